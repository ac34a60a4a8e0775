// Runs of printable ASCII, sixteen bytes a step. Nearly all text of the field holds long ones, in whatever
// charset; the controls are left out because some charsets read ESC, SO, SI or DEL in ways of their own.
//
// Invariant: nothing is read behind from_end, nothing is written behind to_end; what a step writes behind the
// run that it copied is overwritten by what follows or left as slack within the buffer.

#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zel {

struct byte_pass {
    const unsigned char *from;
    const unsigned char *from_end;
    unsigned char *to;
    unsigned char *to_end;
};

constexpr bool is_printable_ascii(unsigned char byte) {
    return byte >= 0x20 && byte < 0x7F;
}

constexpr std::size_t ascii_step = 16;

// The vector types of the compilers: SSE2, NEON, or plain words where there is neither.
using signed_bytes = signed char __attribute__((vector_size(ascii_step)));
using flag_words = std::uint64_t __attribute__((vector_size(ascii_step)));

// How many of sixteen bytes come before the first that is no printable ASCII. High bytes are negative.
inline std::size_t printable_prefix(signed_bytes bytes) {
    const auto others = reinterpret_cast<flag_words>((bytes < 0x20) | (bytes == 0x7F));
    if (!(others[0] | others[1]))
        return ascii_step;
    const std::size_t word = others[0] ? 0 : 1;
    const int bits = std::endian::native == std::endian::little ? std::countr_zero(others[word])
                                                                : std::countl_zero(others[word]);
    return word * 8 + static_cast<std::size_t>(bits) / 8;
}

// Copies printable ASCII until another byte, the end of the text or the end of the room.
inline void copy_printable(byte_pass &pass) {
    while (pass.from_end - pass.from >= static_cast<std::ptrdiff_t>(ascii_step) &&
           pass.to_end - pass.to >= static_cast<std::ptrdiff_t>(ascii_step)) {
        signed_bytes bytes;
        std::memcpy(&bytes, pass.from, sizeof bytes);
        std::memcpy(pass.to, &bytes, sizeof bytes);
        const std::size_t prefix = printable_prefix(bytes);
        pass.from += prefix;
        pass.to += prefix;
        if (prefix < ascii_step)
            return;
    }
    while (pass.from != pass.from_end && pass.to != pass.to_end && is_printable_ascii(*pass.from))
        *pass.to++ = *pass.from++;
}

} // namespace zel
