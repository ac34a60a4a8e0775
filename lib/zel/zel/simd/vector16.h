// Sixteen bytes in a register, in the vector types of the compilers: SSE2 on x86-64, NEON on ARM, plain words
// where there is neither. Bytes and masks are types of their own: a mask comes from a predicate, and has all
// bits of a byte set or none.
//
// Invariant: all that depends on byte order or on the instructions of a processor is in this folder.

#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace zel {

inline constexpr std::size_t vector_size = 16;

using vector_bytes = unsigned char __attribute__((vector_size(vector_size)));

using vector_signed = signed char __attribute__((vector_size(vector_size)));

struct vector_mask {
    vector_bytes bytes; // 0xFF where the predicate holds, 0 elsewhere
};

inline vector_mask operator|(vector_mask one, vector_mask other) {
    return {one.bytes | other.bytes};
}

inline vector_mask operator&(vector_mask one, vector_mask other) {
    return {one.bytes & other.bytes};
}

inline vector_mask operator~(vector_mask mask) {
    return {~mask.bytes};
}

inline vector_bytes load_vector(const void *from) {
    vector_bytes bytes;
    std::memcpy(&bytes, from, sizeof bytes);
    return bytes;
}

inline void store_vector(void *to, vector_bytes bytes) {
    std::memcpy(to, &bytes, sizeof bytes);
}

// The predicates.

inline vector_mask are_high(vector_bytes bytes) {
    return {reinterpret_cast<vector_bytes>(reinterpret_cast<vector_signed>(bytes) < 0)};
}

inline vector_mask are_byte(vector_bytes bytes, unsigned char value) {
    return {reinterpret_cast<vector_bytes>(bytes == value)};
}

// The subtraction wraps what is below the range to above it.
inline vector_mask are_between(vector_bytes bytes, unsigned char first, unsigned char last) {
    return {reinterpret_cast<vector_bytes>(bytes - first <= static_cast<unsigned char>(last - first))};
}

// Each byte shifted by itself. There is an instruction for numbers of 16 bits: what crosses to the other byte
// is masked.
using vector_numbers = std::uint16_t __attribute__((vector_size(vector_size)));

template <unsigned Bits>
vector_bytes shifted_left(vector_bytes bytes) {
    const auto shifted = reinterpret_cast<vector_bytes>(reinterpret_cast<vector_numbers>(bytes) << Bits);
    return shifted & static_cast<unsigned char>(0xFF << Bits);
}

template <unsigned Bits>
vector_bytes shifted_right(vector_bytes bytes) {
    const auto shifted = reinterpret_cast<vector_bytes>(reinterpret_cast<vector_numbers>(bytes) >> Bits);
    return shifted & static_cast<unsigned char>(0xFF >> Bits);
}

// Pairs of bytes, from an even place on, that are both 0.
inline vector_mask are_pairs_zero(vector_bytes bytes) {
    return {reinterpret_cast<vector_bytes>(reinterpret_cast<vector_numbers>(bytes) == 0)};
}

inline vector_bytes select(vector_mask mask, vector_bytes where_set, vector_bytes elsewhere) {
    return (where_set & mask.bytes) | (elsewhere & ~mask.bytes);
}

constexpr bool is_little_endian = std::endian::native == std::endian::little;

// A bit for each byte, that of the first byte lowest. A multiplication moves eight of them side by side.
inline unsigned gathered_bits(vector_mask mask) {
    using vector_longs = std::uint64_t __attribute__((vector_size(vector_size)));
    constexpr std::uint64_t gather = is_little_endian ? 0x0102040810204080 : 0x8040201008040201;
    const auto single = reinterpret_cast<vector_longs>(mask.bytes) >> 7 & 0x0101010101010101;
    return static_cast<unsigned>(single[0] * gather >> 56 | single[1] * gather >> 56 << 8);
}

// The same where the processor has it as one instruction.
inline unsigned bits_of(vector_mask mask) {
#ifdef __SSE2__
    return static_cast<unsigned>(_mm_movemask_epi8(reinterpret_cast<__m128i>(mask.bytes)));
#else
    return gathered_bits(mask);
#endif
}

inline bool any(vector_mask mask) {
    return bits_of(mask) != 0;
}

// The bytes from a place of the first vector on, and the first ones of the next.
template <int Place>
vector_bytes moved_down(vector_bytes bytes, vector_bytes next) {
#ifdef __SSE2__ // of which g++ makes no shuffle like this
    const __m128i low = _mm_srli_si128(reinterpret_cast<__m128i>(bytes), Place);
    const __m128i high = _mm_slli_si128(reinterpret_cast<__m128i>(next), vector_size - Place);
    return reinterpret_cast<vector_bytes>(_mm_or_si128(low, high));
#else
    unsigned char both[2 * vector_size];
    store_vector(both, bytes);
    store_vector(both + vector_size, next);
    return load_vector(both + Place);
#endif
}

// The bytes of two vectors in turn, one of each.
struct vector_pair {
    vector_bytes first, last;
};

inline vector_pair interleaved(vector_bytes one, vector_bytes other) {
    return {
        __builtin_shufflevector(one, other, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23),
        __builtin_shufflevector(one, other, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31)};
}

// Numbers of 16 bits from their low and their high bytes.
inline vector_pair numbers_of(vector_bytes low, vector_bytes high) {
    return is_little_endian ? interleaved(low, high) : interleaved(high, low);
}

// The first and the second bytes of eight pairs, as numbers to do arithmetic on.
template <class Numbers>
struct byte_pairs {
    Numbers first, second;
};

template <class Numbers>
byte_pairs<Numbers> split_pairs(vector_bytes bytes) {
    const auto low = reinterpret_cast<Numbers>(bytes) & 0xFF;
    const auto high = reinterpret_cast<Numbers>(reinterpret_cast<vector_numbers>(bytes) >> 8);
    return is_little_endian ? byte_pairs<Numbers>{low, high} : byte_pairs<Numbers>{high, low};
}

template <class Numbers>
vector_bytes join_pairs(const byte_pairs<Numbers> &pairs) {
    const Numbers low = (is_little_endian ? pairs.first : pairs.second) & 0xFF;
    const Numbers high = is_little_endian ? pairs.second : pairs.first;
    return reinterpret_cast<vector_bytes>(low | high << 8);
}

// Two bytes of text as a number, the first byte highest: their order among the characters of a charset. A
// swap of 16 bits would keep the rest of its register, and so wait for what was in it.
inline std::uint16_t load_two_bytes(const unsigned char *from) {
    std::uint16_t bytes;
    std::memcpy(&bytes, from, sizeof bytes);
    return is_little_endian ? static_cast<std::uint16_t>(__builtin_bswap32(bytes) >> 16) : bytes;
}

// Two bytes of text out of a number, the first byte lowest.
inline void store_two_bytes(unsigned char *to, std::uint16_t bytes) {
    if (!is_little_endian)
        bytes = __builtin_bswap16(bytes);
    std::memcpy(to, &bytes, sizeof bytes);
}

} // namespace zel
