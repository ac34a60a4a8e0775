// What the direct converters share: the way from a caller's buffers through a kernel, and how bytes change
// between 7-bit and 8-bit text.
//
// Invariant: a converter stops at the first character that does not fit.

#pragma once

#include "zel/base/input.h"
#include "zel/base/output.h"
#include "zel/transcode/runs.h"

#include <cstdint>

namespace zel {

// Where nothing is written, the length of the result is counted, a block after the other.
template <kernel K>
status count_directly(K &kernel, input from, output &to) {
    unsigned char converted[4 * K::writes];
    cursors at = {from.at, from.end, converted, std::end(converted)};
    status answer = status::done;
    while (answer == status::done && !ended(at)) {
        answer = take_block_near_end(kernel, at);
        to.length += static_cast<std::size_t>(at.to - converted);
        at.to = converted;
    }
    return answer;
}

// Overlapping buffers go character by character, as a block would spoil text that is not yet read.
template <kernel K>
[[gnu::flatten]] status convert_directly(K &kernel, input from, output &to) {
    if (!to.start)
        return count_directly(kernel, from, to);
    auto *const start = reinterpret_cast<unsigned char *>(to.start) + to.length;
    cursors at = {from.at, from.end, start, start + room_left(to)};
    const std::string_view whole(reinterpret_cast<const char *>(from.at), left(from));
    const status answer =
        overlap(whole, {to.start, to.size}) ? scalar_steps(kernel, at, left(at)) : transcode(kernel, at);
    to.length += static_cast<std::size_t>(at.to - start);
    return answer;
}

using conversion = void(input from, output &to);

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

inline void copy_with_high_bits(unsigned char *to, const unsigned char *from) {
    store_vector(to, load_vector(from) | 0x80);
}

inline bool put_with_high_bits(cursors &at, unsigned char first, unsigned char second) {
    return put(at, with_high_bit(first), with_high_bit(second));
}

// The answer to raw 8-bit bytes in 7-bit text.
inline unsigned char as_7bit(unsigned char byte, bool pass_8bit) {
    return byte < 0x80 || pass_8bit ? byte : '?';
}

inline status done_if(bool fits) {
    return fits ? status::done : status::full;
}

} // namespace zel
