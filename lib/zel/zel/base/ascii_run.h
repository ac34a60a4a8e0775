// Runs of ASCII, sixteen bytes a step. Nearly all text of the field holds long ones, in whatever charset.
// Where a charset reads some controls in ways of its own (ESC, SO and SI, or DEL), the run is one of
// printable ASCII alone.
//
// Invariant: nothing is read behind from_end, nothing is written behind to_end; what a step writes behind the
// run that it copied is overwritten by what follows or left as slack within the buffer.

#pragma once

#include "zel/base/lanes.h"

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

template <ascii_run Run>
signed_bytes others_among(signed_bytes bytes) {
    if constexpr (Run == ascii_run::whole)
        return is_high(bytes);
    else
        return (bytes < ' ') | is_byte(bytes, 0x7F); // high bytes are negative
}

// Steps of four while there is nothing else; true if another byte is near.
template <ascii_run Run>
void copy_long_run(byte_pass &pass) {
    constexpr std::size_t steps = 4;
    while (left(pass) >= steps * lane_step && room(pass) >= steps * lane_step) {
        signed_bytes others = {};
        for (std::size_t step = 0; step < steps; ++step)
            others |= others_among<Run>(load_bytes(pass.from + step * lane_step));
        if (any(others))
            return;
        std::memcpy(pass.to, pass.from, steps * lane_step);
        pass.from += steps * lane_step;
        pass.to += steps * lane_step;
    }
}

// Copies the run until another byte, the end of the text or the end of the room.
template <ascii_run Run>
void copy_run(byte_pass &pass) {
    bool is_long = false;
    while (left(pass) >= lane_step && room(pass) >= lane_step) {
        const signed_bytes bytes = load_bytes(pass.from);
        std::memcpy(pass.to, &bytes, sizeof bytes);
        const signed_bytes others = others_among<Run>(bytes);
        if (any(others)) {
            const std::size_t prefix = bytes_before(others);
            pass.from += prefix;
            pass.to += prefix;
            return;
        }
        pass.from += lane_step;
        pass.to += lane_step;
        if (is_long)
            copy_long_run<Run>(pass);
        is_long = true;
    }
    while (left(pass) && room(pass) && belongs_to<Run>(*pass.from))
        *pass.to++ = *pass.from++;
}

} // namespace zel
