// The road around ICU, for the pairs that have one. ASCII text between charsets that keep ASCII goes it from
// the start; once there is a table for what the pair converts between, all text goes it that the table can
// decide.
//
// Invariant: a result is ICU's to the byte, or it is not given.

#pragma once

#include "zel/conversion/shared_tables.h"
#include "zel/conversion/table_conversion.h"

#include <unicode/ucnv.h>

#include <string_view>

namespace zel {

struct fast_road {
    ascii_identity kept;
    table_conversion convert;             // by the table of a charset, from or to UTF-8
    shared_table<code_table> *characters; // null where neither is UTF-8, or no table can serve the other
    shared_table<byte_table> *bytes;      // null unless both are of single bytes and keep all of ASCII
};

// Before the pair is linked.
void prepare_road(fast_road &road, UConverter *from_cnv, UConverter *to_cnv);

// Converts as ICU would. Where the text is undecided or does not fit, what to_buf holds is worthless.
verdict convert_by_road(const fast_road &road, std::string_view text, char *to_buf, std::int32_t to_size,
                        std::int32_t &length);

// Text of the pair that goes through ICU: so much of it earns a table.
void note_conversion(const fast_road &road, std::size_t bytes);

} // namespace zel
