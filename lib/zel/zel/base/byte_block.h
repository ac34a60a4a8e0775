// A question put to 64 bytes at once. The answers are a number with a bit for each byte, that of the first
// byte lowest.
//
// Invariant: what stands behind a text that ends within a block is zeros, and nothing behind it is read.

#pragma once

#include "zel/base/lanes.h"

#include <algorithm>
#include <string_view>

namespace zel {

using bit_per_byte = std::uint64_t;

inline constexpr std::size_t block_size = 64;

// One at least.
constexpr bit_per_byte first_bytes(std::size_t count) {
    return ~bit_per_byte{0} >> (block_size - count);
}

struct byte_block {
    signed_bytes steps[block_size / lane_step];
};

inline byte_block load_block(const void *from) {
    const auto *bytes = static_cast<const char *>(from);
    return {load_bytes(bytes), load_bytes(bytes + lane_step), load_bytes(bytes + 2 * lane_step),
            load_bytes(bytes + 3 * lane_step)};
}

inline void store_block(unsigned char *to, const byte_block &block) {
    for (const signed_bytes &step : block.steps) {
        std::memcpy(to, &step, lane_step);
        to += lane_step;
    }
}

// The text is less than a block.
inline byte_block load_rest(std::string_view text) {
    char padded[block_size] = {};
    std::copy(text.begin(), text.end(), padded);
    return load_block(padded);
}

template <class Question>
bit_per_byte ask(const byte_block &block, Question question) {
    bit_per_byte answers = 0;
    for (std::size_t step = 0; step < std::size(block.steps); ++step)
        answers |= bit_per_byte{bits_of(question(block.steps[step]))} << step * lane_step;
    return answers;
}

template <class Question>
bool has_any(const byte_block &block, Question question) {
    return any(question(block.steps[0]) | question(block.steps[1]) | question(block.steps[2]) |
               question(block.steps[3]));
}

inline bit_per_byte places_of(unsigned char value, const byte_block &block) {
    return ask(block, [=](signed_bytes bytes) { return is_byte(bytes, value); });
}

} // namespace zel
