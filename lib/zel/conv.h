// What the direct converters share: the road from a caller's buffers through a walk of one loop, the answer
// to raw 8-bit bytes in 7-bit text, and pairs that differ from their 7-bit form by the high bits alone.
//
// Invariant of every walk: it stops at the first unit that does not fit, and never reads behind the input's
// end.

#pragma once

#include "zel/base/charset_names.h"
#include "zel/base/input.h"
#include "zel/base/output.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace zel {

using conversion = void(input from, output &to);

// A pair of charsets that goes to a converter of our own.
struct direct_route {
    const char *from_charset;
    const char *to_charset;
    conversion *convert;

    bool serves(const char *from, const char *to) const {
        return same_name(from_charset, from) && same_name(to_charset, to);
    }
};

template <std::size_t N>
const direct_route *find_route(const direct_route (&routes)[N], const char *from, const char *to) {
    const auto *route =
        std::find_if(routes, routes + N, [&](const auto &each) { return each.serves(from, to); });
    return route == routes + N ? nullptr : route;
}

// The whole result or nothing of it. No byte becomes more than two but in text that goes to ISO-2022-JP.
inline bool put_whole(output &to, conversion &convert, input from) {
    if (!fits(to, 2 * left(from))) {
        output counted = counting_output();
        convert(from, counted);
        if (!fits(to, counted.length))
            return false;
    }
    convert(from, to);
    return true;
}

// The caller's buffer has room for the terminator whatever its size says.
inline std::int32_t convert_for_caller(conversion &convert, const char *from_buf, std::int32_t from_len,
                                       char *to_buf, std::int32_t to_size) {
    output to = output_to(to_buf, std::max(to_size, 1));
    convert(input_from(from_buf, from_len), to);
    return finish(to);
}

inline unsigned char with_high_bit(unsigned char byte) {
    return static_cast<unsigned char>(byte | 0x80);
}

inline unsigned char without_high_bit(unsigned char byte) {
    return static_cast<unsigned char>(byte & 0x7F);
}

inline unsigned char as_7bit(unsigned char byte, bool pass_8bit) {
    return byte < 0x80 || pass_8bit ? byte : '?';
}

inline bool put_pair(output &to, unsigned char first, unsigned char second) {
    const char pair[] = {static_cast<char>(first), static_cast<char>(second)};
    return put(to, std::string_view(pair, sizeof pair));
}

inline bool put_high_pair(output &to, unsigned char first, unsigned char second) {
    return put_pair(to, with_high_bit(first), with_high_bit(second));
}

} // namespace zel
