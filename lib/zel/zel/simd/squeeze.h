// Bytes that a bitmask keeps are moved side by side, eight at a time: a table holds the shuffle for each mask
// of eight bits. Where the processor has no shuffle, each byte is stored and the cursor moves on if it is
// kept.
//
// Invariant: nothing here branches on the bits.

#pragma once

#include "zel/simd/block64.h"
#include "zel/simd/instructions.h"

#include <array>
#include <cstdint>

namespace zel {

inline constexpr std::size_t squeeze_step = 8;

// For each mask the places of its bits, then places that give zeros.
using squeeze_shuffle = std::array<std::uint8_t, squeeze_step>;

inline constexpr auto squeeze_shuffles = [] {
    std::array<squeeze_shuffle, 256> shuffles = {};
    for (unsigned mask = 0; mask < shuffles.size(); ++mask) {
        std::size_t kept = 0;
        shuffles[mask].fill(0x80);
        for (std::uint8_t place = 0; place < squeeze_step; ++place)
            if (mask >> place & 1)
                shuffles[mask][kept++] = place;
    }
    return shuffles;
}();

// For eight slots of two bytes: the first byte of each, and the second where the bit of the slot is set.
using slot_shuffle = std::array<std::uint8_t, 2 * squeeze_step>;

inline constexpr auto slot_shuffles = [] {
    std::array<slot_shuffle, 256> shuffles = {};
    for (unsigned mask = 0; mask < shuffles.size(); ++mask) {
        std::size_t kept = 0;
        shuffles[mask].fill(0x80);
        for (std::uint8_t slot = 0; slot < squeeze_step; ++slot) {
            shuffles[mask][kept++] = static_cast<std::uint8_t>(2 * slot);
            if (mask >> slot & 1)
                shuffles[mask][kept++] = static_cast<std::uint8_t>(2 * slot + 1);
        }
    }
    return shuffles;
}();

// Eight bytes are stored, however few are kept. Gives the end of those.
template <instructions>
inline unsigned char *squeeze(unsigned char *to, const unsigned char *from, unsigned mask) {
    for (std::size_t place = 0; place < squeeze_step; ++place) {
        *to = from[place];
        to += mask >> place & 1;
    }
    return to;
}

// Sixteen bytes are stored.
template <instructions>
inline unsigned char *squeeze_slots(unsigned char *to, const unsigned char *slots, unsigned mask) {
    for (std::size_t slot = 0; slot < squeeze_step; ++slot) {
        to[0] = slots[2 * slot];
        to[1] = slots[2 * slot + 1];
        to += 1 + (mask >> slot & 1);
    }
    return to;
}

#ifdef __x86_64__
template <>
ZEL_AVX2 inline unsigned char *squeeze<instructions::avx2>(unsigned char *to, const unsigned char *from,
                                                           unsigned mask) {
    const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i *>(from));
    const __m128i shuffle = _mm_loadl_epi64(reinterpret_cast<const __m128i *>(&squeeze_shuffles[mask]));
    _mm_storel_epi64(reinterpret_cast<__m128i *>(to), _mm_shuffle_epi8(bytes, shuffle));
    return to + std::popcount(mask);
}

template <>
ZEL_AVX2 inline unsigned char *squeeze_slots<instructions::avx2>(unsigned char *to,
                                                                 const unsigned char *slots, unsigned mask) {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(slots));
    const __m128i shuffle = _mm_loadu_si128(reinterpret_cast<const __m128i *>(&slot_shuffles[mask]));
    _mm_storeu_si128(reinterpret_cast<__m128i *>(to), _mm_shuffle_epi8(bytes, shuffle));
    return to + squeeze_step + std::popcount(mask);
}
#endif

// What a whole block may store behind the last byte that it keeps.
inline constexpr std::size_t squeeze_slack = 2 * squeeze_step;

template <instructions Set>
unsigned char *squeeze_block(unsigned char *to, const unsigned char *from, bitmask64 kept) {
    for (std::size_t at = 0; at < block_size; at += squeeze_step)
        to = squeeze<Set>(to, from + at, kept >> at & 0xFF);
    return to;
}

template <instructions Set>
unsigned char *squeeze_block_of_slots(unsigned char *to, const unsigned char *slots, bitmask64 of_two_bytes) {
    for (std::size_t at = 0; at < block_size; at += squeeze_step)
        to = squeeze_slots<Set>(to, slots + 2 * at, of_two_bytes >> at & 0xFF);
    return to;
}

} // namespace zel
