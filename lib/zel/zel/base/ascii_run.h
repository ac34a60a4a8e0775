// Runs of ASCII, a block at a time. Nearly all text of the field holds long ones, in whatever charset. Where
// a charset reads some controls in ways of its own (ESC, SO and SI, or DEL), the run is one of text alone, to
// which no control from SO on belongs.
//
// Invariant: nothing is read behind from_end, nothing is written behind to_end; what a block writes behind
// the run that it copied is overwritten by what follows or left as slack within the buffer.

#pragma once

#include "zel/base/byte_block.h"

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

// Copies blocks as long as they hold nothing else.
template <ascii_run Run>
void copy_blocks(byte_pass &pass) {
    while (left(pass) >= block_size && room(pass) >= block_size) {
        const byte_block block = load_block(pass.from);
        if (has_any(block, others_among<Run>))
            return;
        store_block(pass.to, block);
        pass.from += block_size;
        pass.to += block_size;
    }
}

} // namespace zel
