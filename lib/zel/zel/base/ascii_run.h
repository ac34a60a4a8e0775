// Runs of ASCII, a window of four steps at a time. Nearly all text of the field holds long ones, in whatever charset.
// Where a charset reads some controls in ways of its own (ESC, SO and SI, or DEL), the run is one of plain
// text alone: printable ASCII and white space.
//
// Invariant: nothing is read behind from_end, nothing is written behind to_end; what a window writes behind
// the run that it copied is overwritten by what follows or left as slack within the buffer.

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

enum class ascii_run { whole, text };

template <ascii_run Run>
constexpr bool belongs_to(unsigned char byte) {
    return Run == ascii_run::whole ? byte < 0x80
                                   : (byte >= ' ' && byte < 0x7F) || (byte >= '\t' && byte <= '\r');
}

template <ascii_run Run>
signed_bytes others_among(signed_bytes bytes) {
    if constexpr (Run == ascii_run::whole)
        return is_high(bytes);
    else
        return ((bytes < ' ') & ~is_between(bytes, '\t', '\r')) | is_byte(bytes, 0x7F); // high is negative
}

constexpr std::size_t window = 4 * lane_step;

// A bit for each byte of a window, that of the first byte lowest.
template <class Flag>
std::uint64_t bits_of_window(const unsigned char *from, Flag flag) {
    std::uint64_t bits = 0;
    for (std::size_t step = 0; step < window; step += lane_step)
        bits |= std::uint64_t{bits_of(flag(load_bytes(from + step)))} << step;
    return bits;
}

// Copies a window and gives a flag for each byte that is no part of a run.
template <ascii_run Run>
std::uint64_t copy_window(const unsigned char *from, unsigned char *to) {
    unsigned char copy[window];
    std::memcpy(copy, from, window);
    std::memcpy(to, copy, window);
    return bits_of_window(copy, others_among<Run>);
}

// Copies windows as long as they hold nothing else.
template <ascii_run Run>
void copy_windows(byte_pass &pass) {
    while (left(pass) >= window && room(pass) >= window) {
        signed_bytes others = {};
        for (std::size_t step = 0; step < window; step += lane_step)
            others |= others_among<Run>(load_bytes(pass.from + step));
        if (any(others))
            return;
        std::memcpy(pass.to, pass.from, window);
        pass.from += window;
        pass.to += window;
    }
}

} // namespace zel
