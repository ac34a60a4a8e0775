// Conversion of a buffer between two charsets: all text of the library goes through here. What needs no
// conversion is copied, pairs that have a converter of our own go to it, and all others go by a table or by
// ICU, there by way of UTF-16; where ICU fails, the copy of the input stands in for the result.
//
// Invariant: nothing is written at or past to_size. A copy that does not fit is cut; a conversion that does
// not fit turns into the copy.

#pragma once

#include "zel/base/output.h"
#include "zel/conversion/converter_cache.h"

#include <cstdint>
#include <optional>

namespace zel {

struct route;

// What the conversion of a pair needs, looked up once for the size, the test and the conversion of a text.
struct charset_pair {
    const char *from_charset;
    const char *to_charset;
    bool same;                 // nothing to convert, or the library passes everything through
    const route *direct;       // a converter of our own
    EncodingConverter *cached; // null for a pair not met yet, or one that ICU does not know
};

charset_pair look_up(const char *from_charset, const char *to_charset);

// Whether ICU has a converter for the pair.
bool has_converter(const charset_pair &pair);

// What the functions of bodies return where it has none.
inline constexpr std::int32_t no_converter = -5;

// The same, for a pair that is used more than once: one that was not met yet is opened and put in.
bool open_pair(charset_pair &pair);

// As ZEL_GetResultBufferSize, for a text that is not empty by its length.
std::int32_t result_size(const charset_pair &pair, std::size_t bytes);

// As ZEL_ConvertBuffer, but tells a pair that ICU has no converter for (nullopt, nothing written) from an
// empty result.
std::optional<std::int32_t> convert_buffer(const charset_pair &pair, std::string_view text, char *to_buf,
                                           std::int32_t to_size);

// As ZEL_ConvertBuffer, but the copy of the input stands in for a missing converter too.
std::int32_t convert_or_copy(const charset_pair &pair, std::string_view text, char *to_buf,
                             std::int32_t to_size);

// Puts the converted text (or the copy) whole, or nothing where it does not fit.
bool put_converted(output &to, const charset_pair &pair, std::string_view text);

// The same, but where the whole does not fit, as many of its characters as do.
bool put_some_converted(output &to, const charset_pair &pair, std::string_view text);

struct converted_text {
    heap_string bytes; // terminated; null where there is no memory
    std::int32_t length;
};

// The converted text (or the copy) in memory of its own, which is as large as the text turns out to need.
converted_text convert_text(const charset_pair &pair, std::string_view text);

} // namespace zel
