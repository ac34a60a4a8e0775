// Runs of ASCII, which nearly all text of the field holds, in whatever charset. Where a charset reads some
// controls in ways of its own (ESC, SO and SI, or DEL), its run is one of plain text, to which no control
// from SO on belongs.

#pragma once

#include "zel/simd/block64.h"

namespace zel {

enum class ascii { all, plain_text };

constexpr bool is_special_control(unsigned char byte) {
    return (byte >= 0x0E && byte < 0x20) || byte == 0x7F;
}

[[gnu::always_inline]] inline vector_mask are_special_controls(vector_bytes bytes) {
    return are_between(bytes, 0x0E, 0x1F) | are_byte(bytes, 0x7F);
}

template <ascii Kept>
constexpr bool is_kept(unsigned char byte) {
    return byte < 0x80 && (Kept == ascii::all || !is_special_control(byte));
}

template <ascii Kept>
vector_mask are_not_kept(vector_bytes bytes) {
    return Kept == ascii::all ? are_high(bytes) : are_high(bytes) | are_special_controls(bytes);
}

} // namespace zel
