// The shape of UTF-8 (RFC 3629): which bytes of a block begin characters of one, two and three bytes, and
// what code units those characters are in UTF-16. Characters of four bytes have no place here.

#pragma once

#include "zel/simd/block64.h"
#include "zel/simd/instructions.h"

#include <cstdint>

namespace zel {

constexpr bool is_continuation(unsigned char byte) {
    return (byte & 0xC0) == 0x80;
}

// As signed numbers they are the lowest.
inline vector_mask are_continuations(vector_bytes bytes) {
    return {reinterpret_cast<vector_bytes>(reinterpret_cast<vector_signed>(bytes) < -0x40)};
}

constexpr unsigned code_point_of_two(const unsigned char *from) {
    return (from[0] & 0x1FU) << 6 | (from[1] & 0x3FU);
}

constexpr unsigned code_point_of_three(const unsigned char *from) {
    return (from[0] & 0x0FU) << 12 | (from[1] & 0x3FU) << 6 | (from[2] & 0x3FU);
}

struct utf8_block {
    bitmask64 high, continuation;
    bitmask64 two_byte, three_byte; // the first bytes of such characters, overlong forms among them
};

template <instructions>
inline utf8_block utf8_shape(const block64 &block) {
    const auto between = [&](unsigned char first, unsigned char last) {
        return mask_of(block, [=](vector_bytes bytes) { return are_between(bytes, first, last); });
    };
    return {mask_of(block, are_high), mask_of(block, are_continuations), between(0xC0, 0xDF),
            between(0xE0, 0xEF)};
}

constexpr bitmask64 lead_bytes(const utf8_block &shape) {
    return shape.two_byte | shape.three_byte;
}

// How many bytes of the block are whole characters, where the text has so many bytes left.
constexpr std::size_t whole_characters(const utf8_block &shape, std::size_t bytes_left) {
    if (bytes_left < block_size)
        return bytes_left;
    const bool cuts_last = lead_bytes(shape) >> (block_size - 1);
    const bool cuts_two = shape.three_byte >> (block_size - 2) & 1;
    return cuts_last ? block_size - 1 : cuts_two ? block_size - 2 : block_size;
}

// Whether each lead byte has its continuation bytes and each continuation byte its lead byte, and no byte is
// neither. Overlong forms and surrogates pass, and so does a last character that the block cuts off.
constexpr bool is_well_formed(const utf8_block &shape) {
    const bitmask64 expected = lead_bytes(shape) << 1 | shape.three_byte << 2;
    return expected == shape.continuation && (shape.high & ~(lead_bytes(shape) | expected)) == 0;
}

// The code unit of a character of two or three bytes that begins at each place of a block; what stands at
// other places means nothing. The bits of both kinds go to the same places, from the last byte but one (x)
// and the last byte (y):
//
//     two bytes      110aaabb 10cccccc              x = 110aaabb, y = 10cccccc
//     three bytes    1110dddd 10aaaabb 10cccccc     x = 10aaaabb, y = 10cccccc
//     code unit      ddddaaaa bbcccccc              dddd only from a lead byte of three
//
// A character that the block cuts off has none. Gives the places of overlong forms, whose code unit would fit
// fewer bytes.
template <instructions>
inline bitmask64 store_code_units(std::uint16_t *units, const block64 &block) {
    bitmask64 overlong = 0;
    for (std::size_t i = 0; i < std::size(block.vectors); ++i) {
        const vector_bytes first = block.vectors[i];
        const vector_bytes behind = i + 1 < std::size(block.vectors) ? block.vectors[i + 1] : vector_bytes{};
        const vector_bytes second = moved_down<1>(first, behind);
        const vector_bytes third = moved_down<2>(first, behind);
        const vector_mask three_byte = are_between(first, 0xE0, 0xFF);
        const vector_bytes x = select(three_byte, second, first);
        const vector_bytes y = select(three_byte, third, second);
        const vector_bytes high = (shifted_right<2>(x) & 0x0F) | (shifted_left<4>(first) & three_byte.bytes);
        const vector_bytes low = shifted_left<6>(x) | (y & 0x3F);
        const vector_pair numbers = numbers_of(low, high);
        store_vector(units + i * vector_size, numbers.first);
        store_vector(units + i * vector_size + vector_size / 2, numbers.last);
        const vector_mask fits_two = three_byte & are_between(high, 0x00, 0x07);
        const vector_mask fits_one = are_between(first, 0xC0, 0xC1);
        overlong |= bitmask64{bits_of(fits_two | fits_one)} << i * vector_size;
    }
    return overlong;
}

#ifdef __x86_64__
// The same for 32 bytes at a time.

ZEL_AVX2 inline __m256i half_of(const block64 &block, std::size_t first) {
    __m128i low = reinterpret_cast<__m128i>(block.vectors[first]);
    asm("" : "+x"(low)); // keeps g++ from merging both loads into one
    return _mm256_set_m128i(reinterpret_cast<__m128i>(block.vectors[first + 1]), low);
}

ZEL_AVX2 inline __m256i all_bytes(unsigned char value) {
    return _mm256_set1_epi8(static_cast<char>(value));
}

ZEL_AVX2 inline __m256i are_between(__m256i bytes, unsigned char first, unsigned char last) {
    const __m256i above_first = _mm256_sub_epi8(bytes, all_bytes(first));
    const __m256i width = all_bytes(static_cast<unsigned char>(last - first));
    return _mm256_cmpeq_epi8(_mm256_min_epu8(above_first, width), above_first);
}

// By plain logic, as g++ 12 takes the instruction for it wrongly where char is unsigned.
ZEL_AVX2 inline __m256i select(__m256i mask, __m256i where_set, __m256i elsewhere) {
    return _mm256_or_si256(_mm256_and_si256(mask, where_set), _mm256_andnot_si256(mask, elsewhere));
}

ZEL_AVX2 inline bitmask64 mask_of(__m256i low, __m256i high) {
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(low)) |
           bitmask64{static_cast<std::uint32_t>(_mm256_movemask_epi8(high))} << block_size / 2;
}

// A bit of all bytes: it is moved to the highest place of its byte. What comes in from the byte below stays
// beneath it.
template <int Place>
ZEL_AVX2 inline bitmask64 bit_of(__m256i low, __m256i high) {
    return mask_of(_mm256_slli_epi16(low, 7 - Place), _mm256_slli_epi16(high, 7 - Place));
}

// By four bits of each byte: 110..... 1110.... 10......
template <>
ZEL_AVX2 inline utf8_block utf8_shape<instructions::avx2>(const block64 &block) {
    const __m256i low = half_of(block, 0), high = half_of(block, 2);
    const bitmask64 bit7 = mask_of(low, high), bit6 = bit_of<6>(low, high);
    const bitmask64 bit5 = bit_of<5>(low, high), bit4 = bit_of<4>(low, high);
    const bitmask64 leads = bit7 & bit6;
    return {bit7, bit7 & ~bit6, leads & ~bit5, leads & bit5 & ~bit4};
}

// Gives the overlong forms.
ZEL_AVX2 inline __m256i store_code_units(std::uint16_t *units, __m256i first, __m256i behind) {
    const __m256i across = _mm256_permute2x128_si256(first, behind, 0x21);
    const __m256i second = _mm256_alignr_epi8(across, first, 1), third = _mm256_alignr_epi8(across, first, 2);
    const __m256i three_byte = are_between(first, 0xE0, 0xFF);
    const __m256i x = select(three_byte, second, first), y = select(three_byte, third, second);
    const __m256i d = _mm256_and_si256(_mm256_slli_epi16(first, 4), all_bytes(0xF0));
    const __m256i a = _mm256_and_si256(_mm256_srli_epi16(x, 2), all_bytes(0x0F));
    const __m256i b = _mm256_and_si256(_mm256_slli_epi16(x, 6), all_bytes(0xC0));
    const __m256i high = _mm256_or_si256(_mm256_and_si256(d, three_byte), a);
    const __m256i low = _mm256_or_si256(b, _mm256_and_si256(y, all_bytes(0x3F)));
    const __m256i even = _mm256_unpacklo_epi8(low, high), odd = _mm256_unpackhi_epi8(low, high);
    auto *const to = reinterpret_cast<__m128i *>(units);
    _mm_storeu_si128(to, _mm256_castsi256_si128(even));
    _mm_storeu_si128(to + 1, _mm256_castsi256_si128(odd));
    _mm_storeu_si128(to + 2, _mm256_extracti128_si256(even, 1));
    _mm_storeu_si128(to + 3, _mm256_extracti128_si256(odd, 1));
    const __m256i fits_two = _mm256_and_si256(three_byte, are_between(high, 0x00, 0x07));
    const __m256i fits_one = _mm256_cmpeq_epi8(_mm256_and_si256(first, all_bytes(0xFE)), all_bytes(0xC0));
    return _mm256_or_si256(fits_two, fits_one);
}

template <>
ZEL_AVX2 inline bitmask64 store_code_units<instructions::avx2>(std::uint16_t *units, const block64 &block) {
    const __m256i low = half_of(block, 0), high = half_of(block, 2);
    const __m256i overlong = store_code_units(units, low, high);
    return mask_of(overlong, store_code_units(units + block_size / 2, high, _mm256_setzero_si256()));
}
#endif

} // namespace zel
