// Conversion of a buffer between two charsets: the one road that all text of the library goes. What needs no
// conversion is copied, pairs that have a converter of our own go to it, all others go through ICU by way of
// UTF-16; where ICU fails, the copy of the input stands in for the result.
//
// Invariant: nothing is written at or past to_size. A copy that does not fit is cut; a conversion that does
// not fit turns into the copy.

#pragma once

#include "zel/base/output.h"
#include "zel/base/owned.h"

#include <optional>

namespace zel {

// As ZEL_ConvertBuffer, but tells a pair that ICU has no converter for (nullopt, nothing written) from an
// empty result.
std::optional<std::int32_t> convert_buffer(const char *from_charset, const char *to_charset,
                                           const char *from_buf, std::int32_t from_len, char *to_buf,
                                           std::int32_t to_size);

// As ZEL_ConvertBuffer, but the copy of the input stands in for a missing converter too.
std::int32_t convert_or_copy(const char *from_charset, const char *to_charset, const char *from_buf,
                             std::int32_t from_len, char *to_buf, std::int32_t to_size);

// Puts the converted text (or the copy) whole, or nothing where it does not fit.
bool put_converted(output &to, const char *from_charset, const char *to_charset, std::string_view text);

// The same, but where the whole does not fit, as many of its characters as do.
bool put_some_converted(output &to, const char *from_charset, const char *to_charset, std::string_view text);

struct converted_text {
    heap_string bytes; // terminated; null where there is no memory
    std::int32_t length;
};

// The converted text (or the copy) in memory of its own, which is as large as the text turns out to need.
converted_text convert_text(const char *from_charset, const char *to_charset, std::string_view text);

} // namespace zel
