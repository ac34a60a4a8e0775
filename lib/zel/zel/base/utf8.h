// The shape of UTF-8 (RFC 3629): characters of two and three bytes, and what the bytes of a block are.

#pragma once

#include "zel/base/byte_block.h"

namespace zel {

constexpr bool is_tail(unsigned char byte) {
    return (byte & 0xC0) == 0x80;
}

inline signed_bytes are_tails(signed_bytes bytes) {
    return bytes < -0x40;
}

constexpr unsigned code_point_of_two(const unsigned char *from) {
    return (from[0] & 0x1FU) << 6 | (from[1] & 0x3FU);
}

constexpr unsigned code_point_of_three(const unsigned char *from) {
    return (from[0] & 0x0FU) << 12 | (from[1] & 0x3FU) << 6 | (from[2] & 0x3FU);
}

struct utf8_block {
    bit_per_byte high, leads_of_two, leads_of_three, tails;
};

inline utf8_block look_at(const byte_block &block) {
    const auto all_between = [&](unsigned char first, unsigned char last) {
        return ask(block, [=](signed_bytes bytes) { return is_between(bytes, first, last); });
    };
    return {ask(block, is_high), all_between(0xC2, 0xDF), all_between(0xE0, 0xEF), ask(block, are_tails)};
}

inline bit_per_byte leads(const utf8_block &seen) {
    return seen.leads_of_two | seen.leads_of_three;
}

// How many bytes of the block are whole characters.
inline std::size_t whole_bytes(const utf8_block &seen, std::size_t bytes) {
    if (bytes < block_size)
        return bytes;
    const bool cut_last = leads(seen) >> (block_size - 1);
    const bool cut_two = seen.leads_of_three >> (block_size - 2) & 1;
    return cut_last ? block_size - 1 : cut_two ? block_size - 2 : block_size;
}

// Whether each lead has its tails, each tail its lead, and no byte is neither; overlong forms of three bytes
// pass. What follows the text is no tail of its last character.
inline bool is_well_formed(const utf8_block &seen, std::size_t bytes) {
    const bit_per_byte expected = leads(seen) << 1 | seen.leads_of_three << 2;
    const bit_per_byte others = seen.high ^ (leads(seen) | seen.tails);
    return expected == seen.tails && (others & first_bytes(bytes)) == 0;
}

} // namespace zel
