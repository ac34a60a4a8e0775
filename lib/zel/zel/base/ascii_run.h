// Runs of ASCII, a window of four steps at a time. Nearly all text of the field holds long ones, in whatever
// charset. Where a charset reads some controls in ways of its own (ESC, SO and SI, or DEL), the run is one of
// plain text alone: printable ASCII and white space.
//
// Invariant: nothing is read behind from_end, nothing is written behind to_end; what a window writes behind
// the run that it copied is overwritten by what follows or left as slack within the buffer.

#pragma once

#include "zel/base/lanes.h"

#include <array>

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

constexpr bool is_control(unsigned char byte) {
    return (byte >= 0x0E && byte < 0x20) || byte == 0x7F;
}

inline signed_bytes are_controls(signed_bytes bytes) {
    return is_between(bytes, 0x0E, 0x1F) | is_byte(bytes, 0x7F);
}

template <ascii_run Run>
constexpr bool belongs_to(unsigned char byte) {
    return byte < 0x80 && (Run == ascii_run::whole || !is_control(byte));
}

template <ascii_run Run>
signed_bytes others_among(signed_bytes bytes) {
    if constexpr (Run == ascii_run::whole)
        return is_high(bytes);
    else
        return is_high(bytes) | are_controls(bytes);
}

constexpr std::size_t window = 4 * lane_step;

using window_bytes = std::array<signed_bytes, 4>;

inline window_bytes load_window(const unsigned char *from) {
    return {load_bytes(from), load_bytes(from + lane_step), load_bytes(from + 2 * lane_step),
            load_bytes(from + 3 * lane_step)};
}

inline void store_window(unsigned char *to, const window_bytes &bytes) {
    for (const signed_bytes &step : bytes) {
        std::memcpy(to, &step, lane_step);
        to += lane_step;
    }
}

// A bit for each byte of a window, that of the first byte lowest.
template <class Flag>
std::uint64_t bits_of(const window_bytes &bytes, Flag flag) {
    return std::uint64_t{bits_of(flag(bytes[0]))} | std::uint64_t{bits_of(flag(bytes[1]))} << lane_step |
           std::uint64_t{bits_of(flag(bytes[2]))} << 2 * lane_step |
           std::uint64_t{bits_of(flag(bytes[3]))} << 3 * lane_step;
}

template <class Flag>
bool any_of(const window_bytes &bytes, Flag flag) {
    return any(flag(bytes[0]) | flag(bytes[1]) | flag(bytes[2]) | flag(bytes[3]));
}

// Copies windows as long as they hold nothing else.
template <ascii_run Run>
void copy_windows(byte_pass &pass) {
    while (left(pass) >= window && room(pass) >= window) {
        const window_bytes seen = load_window(pass.from);
        if (any_of(seen, others_among<Run>))
            return;
        store_window(pass.to, seen);
        pass.from += window;
        pass.to += window;
    }
}

} // namespace zel
