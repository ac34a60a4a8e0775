// Runs of ASCII, sixteen bytes a step. Nearly all text of the field holds long ones, in whatever charset.
// Where a charset reads some controls in ways of its own (ESC, SO and SI, or DEL), the run is one of
// printable ASCII alone.
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

inline std::size_t left(const byte_pass &pass) {
    return static_cast<std::size_t>(pass.from_end - pass.from);
}

inline std::size_t room(const byte_pass &pass) {
    return static_cast<std::size_t>(pass.to_end - pass.to);
}

enum class ascii_run { whole, printable };

template <ascii_run Run>
constexpr bool belongs_to(unsigned char byte) {
    return Run == ascii_run::whole ? byte < 0x80 : byte >= 0x20 && byte < 0x7F;
}

inline constexpr std::size_t ascii_step = 16;

// The vector types of the compilers: SSE2, NEON, or plain words where there is neither.
using signed_bytes = signed char __attribute__((vector_size(ascii_step)));
using flag_words = std::uint64_t __attribute__((vector_size(ascii_step)));

inline signed_bytes load_bytes(const unsigned char *from) {
    signed_bytes bytes;
    std::memcpy(&bytes, from, sizeof bytes);
    return bytes;
}

// High bytes are negative.
template <ascii_run Run>
flag_words others_among(signed_bytes bytes) {
    if constexpr (Run == ascii_run::whole)
        return reinterpret_cast<flag_words>(bytes < 0);
    else
        return reinterpret_cast<flag_words>((bytes < 0x20) | (bytes == 0x7F));
}

inline std::size_t first_flag(flag_words others) {
    const std::size_t word = others[0] ? 0 : 1;
    const int bits = std::endian::native == std::endian::little ? std::countr_zero(others[word])
                                                                : std::countl_zero(others[word]);
    return word * 8 + static_cast<std::size_t>(bits) / 8;
}

// Steps of four while there is nothing else; true if another byte is near.
template <ascii_run Run>
void copy_long_run(byte_pass &pass) {
    constexpr std::size_t steps = 4;
    while (left(pass) >= steps * ascii_step && room(pass) >= steps * ascii_step) {
        flag_words others = {};
        for (std::size_t step = 0; step < steps; ++step)
            others |= others_among<Run>(load_bytes(pass.from + step * ascii_step));
        if (others[0] | others[1])
            return;
        std::memcpy(pass.to, pass.from, steps * ascii_step);
        pass.from += steps * ascii_step;
        pass.to += steps * ascii_step;
    }
}

// Copies the run until another byte, the end of the text or the end of the room.
template <ascii_run Run>
void copy_run(byte_pass &pass) {
    bool is_long = false;
    while (left(pass) >= ascii_step && room(pass) >= ascii_step) {
        const signed_bytes bytes = load_bytes(pass.from);
        std::memcpy(pass.to, &bytes, sizeof bytes);
        const flag_words others = others_among<Run>(bytes);
        if (others[0] | others[1]) {
            const std::size_t prefix = first_flag(others);
            pass.from += prefix;
            pass.to += prefix;
            return;
        }
        pass.from += ascii_step;
        pass.to += ascii_step;
        if (is_long)
            copy_long_run<Run>(pass);
        is_long = true;
    }
    while (left(pass) && room(pass) && belongs_to<Run>(*pass.from))
        *pass.to++ = *pass.from++;
}

} // namespace zel
