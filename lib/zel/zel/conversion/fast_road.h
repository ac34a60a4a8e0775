// The road around ICU, for the pairs that have one. ASCII text between charsets that keep ASCII goes it from
// the start; once a pair has converted enough text to be worth it, a table is built, and all text goes it
// that the table can decide: one of a charset, for its pairs with UTF-8, or one of two charsets of single
// bytes.
//
// Invariant: a result is ICU's to the byte, or it is not given. A table is complete before it is published
// (release store), and is read without a lock (acquire load) until the stop.

#pragma once

#include "zel/conversion/table_conversion.h"

#include <unicode/ucnv.h>

#include <atomic>
#include <string_view>

namespace zel {

struct fast_road {
    ascii_identity kept;
    table_conversion convert; // null where no table can serve the pair
    std::atomic<std::uint64_t> converted;
    std::atomic<const code_table *> table;
};

// Before the pair is linked.
void prepare_road(fast_road &road, const char *from_charset, const char *to_charset, UConverter *from_cnv,
                  UConverter *to_cnv);

// Converts as ICU would. Where the text is undecided or does not fit, what to_buf holds is worthless.
verdict convert_by_road(const fast_road &road, std::string_view text, char *to_buf, std::int32_t to_size,
                        std::int32_t &length);

// Text of the pair that went through ICU: every so much of it earns the pair its table.
void note_conversion(fast_road &road, const char *from_charset, const char *to_charset, std::size_t bytes);

void release_tables();

} // namespace zel
