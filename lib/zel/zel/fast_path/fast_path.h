// Conversion without ICU, for the pairs of charsets where it can be done. ASCII text between charsets that
// keep ASCII goes this way from the start; once there is a table for what the pair converts between, all text
// does that the table decides.
//
// Invariant: a result is ICU's to the byte, or it is not given.

#pragma once

#include "zel/fast_path/shared_tables.h"
#include "zel/fast_path/table_transcoders.h"

#include <unicode/ucnv.h>

#include <cstdint>
#include <string_view>

namespace zel {

struct fast_path {
    ascii_identity kept;
    shared_table<code_table> *characters; // null where neither is UTF-8, or no table can serve the other
    transcoder by_characters;             // from UTF-8 or to it, as the pair goes
    shared_table<byte_table> *bytes;      // null unless both are of single bytes and keep all of ASCII
};

// Before the pair is linked.
void prepare(fast_path &path, UConverter *from_cnv, UConverter *to_cnv);

// Converts as ICU would. Where the text is undecided or does not fit, what to_buf holds is worthless.
status convert(const fast_path &path, std::string_view text, char *to_buf, std::int32_t to_size,
               std::int32_t &length);

// Text of the pair that goes through ICU: so much of it earns a table.
void note_conversion(const fast_path &path, std::size_t bytes);

} // namespace zel
