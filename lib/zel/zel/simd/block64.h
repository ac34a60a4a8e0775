// A block of 64 bytes and what a predicate says of it: a number of 64 bits, in which the bit of the first
// byte is the lowest.

#pragma once

#include "zel/simd/vector16.h"

#include <cstdint>
#include <iterator>

namespace zel {

using bitmask64 = std::uint64_t;

inline constexpr std::size_t block_size = 64;

struct block64 {
    vector_bytes vectors[block_size / vector_size];
};

inline block64 load_block(const void *from) {
    const auto *bytes = static_cast<const unsigned char *>(from);
    return {load_vector(bytes), load_vector(bytes + 16), load_vector(bytes + 32), load_vector(bytes + 48)};
}

inline void store_block(void *to, const block64 &block) {
    auto *bytes = static_cast<unsigned char *>(to);
    for (std::size_t i = 0; i < std::size(block.vectors); ++i)
        store_vector(bytes + i * vector_size, block.vectors[i]);
}

template <class Predicate>
bitmask64 mask_of(const block64 &block, Predicate predicate) {
    bitmask64 mask = 0;
    for (std::size_t i = 0; i < std::size(block.vectors); ++i)
        mask |= bitmask64{bits_of(predicate(block.vectors[i]))} << i * vector_size;
    return mask;
}

// Inlined with its predicate, so that both have the instructions of the caller.
template <class Predicate>
[[gnu::always_inline]] inline bool has_any(const block64 &block, Predicate predicate) {
    return any(predicate(block.vectors[0]) | predicate(block.vectors[1]) | predicate(block.vectors[2]) |
               predicate(block.vectors[3]));
}

inline bitmask64 places_of(unsigned char value, const block64 &block) {
    return mask_of(block, [=](vector_bytes bytes) { return are_byte(bytes, value); });
}

// The bits of the first bytes; of one at least.
constexpr bitmask64 first_bits(std::size_t count) {
    return ~bitmask64{0} >> (block_size - count);
}

// The place of the first byte whose bit is set; 64 if there is none.
constexpr std::size_t first_of(bitmask64 bits) {
    return static_cast<std::size_t>(std::countr_zero(bits));
}

// The bits in front of that place.
constexpr bitmask64 in_front_of_first(bitmask64 bits) {
    return (bits - 1) & ~bits;
}

constexpr bitmask64 without_first(bitmask64 bits) {
    return bits & (bits - 1);
}

// Which of the bytes that may be lead bytes are, in a text of double-byte characters that begins with the
// block. A run of them begins with a lead byte, and every second byte of it is one:
//
//     text         a  L  T  L  t  b      L leads; T could lead, t could not: both are trail bytes
//     candidates   0  1  1  1  0  0
//     lead bytes   0  1  0  1  0  0
//
// Adding the first bit of a run to the run carries through it and clears it: so the runs that begin on an
// even place are told from those that begin on an odd one.
constexpr bitmask64 lead_bytes_among(bitmask64 candidates) {
    constexpr bitmask64 even_places = 0x5555555555555555;
    const bitmask64 first_of_runs = candidates & ~(candidates << 1);
    const bitmask64 even_runs = candidates & ~(candidates + (first_of_runs & even_places));
    return (even_runs & even_places) | (candidates & ~even_runs & ~even_places);
}

// How many bytes of a block are whole double-byte characters, where the text has so many bytes left; 0 where
// the text ends within one.
constexpr std::size_t whole_characters(bitmask64 leads, std::size_t bytes_left) {
    const std::size_t length = bytes_left < block_size ? bytes_left : block_size;
    const bool cuts_last = leads >> (length - 1) & 1;
    return !cuts_last ? length : length < block_size ? 0 : length - 1;
}

static_assert(lead_bytes_among(0b001110) == 0b001010); // the text of the drawing, its first byte lowest
static_assert(lead_bytes_among(0b0111010110) == 0b0101010010);

} // namespace zel
