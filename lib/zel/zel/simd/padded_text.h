// The last bytes of a text in a buffer of whole vectors, with a byte of the caller's choice behind them, so
// that code for whole blocks can read them.
//
// A vector that is loaded from what two stores wrote waits until both have reached the cache, which takes as
// long as some twenty instructions. So the bytes of a vector that the text fills only in part are put
// together in registers, and each vector is stored in the place from which it is loaded.
//
// Invariant: nothing is read in front of the text or behind it.

#pragma once

#include "zel/simd/block64.h"
#include "zel/simd/instructions.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace zel {

// Eight bytes of text as a number, the first byte lowest.
using text_word = std::uint64_t;
inline constexpr std::size_t word_size = sizeof(text_word);

inline text_word in_order_of_text(text_word word) {
    return is_little_endian ? word : __builtin_bswap64(word);
}

inline text_word load_word(const unsigned char *from) {
    text_word word;
    std::memcpy(&word, from, sizeof word);
    return in_order_of_text(word);
}

inline text_word load_half_word(const unsigned char *from) {
    std::uint32_t half;
    std::memcpy(&half, from, sizeof half);
    return is_little_endian ? half : __builtin_bswap32(half);
}

// A shift by so many bytes of a word, by all of them too.
constexpr text_word without_first_bytes(text_word word, std::size_t count) {
    return word >> 4 * count >> 4 * count;
}

constexpr text_word moved_behind(text_word word, std::size_t count) {
    return word << 4 * count << 4 * count;
}

// A text of less than a word, by parts that may overlap.
inline text_word load_short_text(const unsigned char *from, std::size_t length) {
    if (length >= word_size / 2) {
        const std::size_t behind = length - word_size / 2;
        return load_half_word(from) | moved_behind(load_half_word(from + behind), behind);
    }
    text_word word = 0;
    for (std::size_t at = 0; at < length; ++at)
        word |= moved_behind(from[at], at);
    return word;
}

// The last length % word_size bytes of a text, and a word of padding behind them.
inline text_word load_last_word(const unsigned char *from, std::size_t length, text_word padding) {
    const std::size_t count = length % word_size;
    const text_word bytes =
        length < word_size ? load_short_text(from, length)
                           : without_first_bytes(load_word(from + length - word_size), word_size - count);
    return bytes | moved_behind(padding, count);
}

// The last length % vector_size bytes of a text, and a byte of padding over and over behind them. They fill
// one word or reach into a second one: both cases are worked out and a mask keeps one of them, as no branch
// could be foreseen.
template <instructions>
inline vector_bytes load_last_vector(const unsigned char *from, std::size_t length,
                                     unsigned char padding_byte) {
    using vector_words = text_word __attribute__((vector_size(vector_size)));
    const text_word padding = text_word{0x0101010101010101} * padding_byte;
    const std::size_t count = length % vector_size;
    const text_word last = load_last_word(from, length, padding);
    const text_word whole = length < word_size ? 0 : load_word(from + length - std::max(count, word_size));
    const text_word if_two = text_word{0} - (count >= word_size);
    const text_word first = (whole & if_two) | (last & ~if_two);
    const text_word second = (last & if_two) | (padding & ~if_two);
    return reinterpret_cast<vector_bytes>(vector_words{in_order_of_text(first), in_order_of_text(second)});
}

#ifdef __x86_64__
// The shuffle that begins at place n moves a vector down by n bytes; 0x80 gives a zero.
inline constexpr auto shuffles_to_front = [] {
    std::array<unsigned char, 2 *vector_size> places = {};
    for (std::size_t at = 0; at < places.size(); ++at)
        places[at] = static_cast<unsigned char>(at < vector_size ? at : 0x80);
    return places;
}();

// By one shuffle where the text fills a vector: its last sixteen bytes are loaded, and those of them that
// belong to the vector before are moved out.
template <>
ZEL_AVX2 inline vector_bytes load_last_vector<instructions::avx2>(const unsigned char *from,
                                                                  std::size_t length, unsigned char padding) {
    if (length < vector_size)
        return load_last_vector<instructions::base>(from, length, padding);
    const std::size_t before = vector_size - length % vector_size;
    const vector_bytes last = load_vector(from + length - vector_size);
    const vector_bytes places = load_vector(&shuffles_to_front[before]);
    const __m128i moved =
        _mm_shuffle_epi8(reinterpret_cast<__m128i>(last), reinterpret_cast<__m128i>(places));
    return reinterpret_cast<vector_bytes>(moved) | (are_high(places).bytes & padding);
}
#endif

// Holds a text that is shorter than it.
template <std::size_t Size>
struct padded_text {
    unsigned char bytes[Size];
    static_assert(Size % vector_size == 0);

    // How much is stored does not depend on the length, so that no branch has to be foreseen.
    template <instructions Set>
    const unsigned char *copy(const unsigned char *from, std::size_t length, unsigned char padding) {
        for (std::size_t at = 0; at < Size; at += vector_size)
            store_vector(bytes + at, vector_bytes{} + padding);
        const std::size_t whole = length - length % vector_size;
        for (std::size_t at = 0; at < Size && whole > 0; at += vector_size) {
            const std::size_t place = std::min(at, whole - vector_size);
            store_vector(bytes + place, load_vector(from + place));
        }
        store_vector(bytes + whole, load_last_vector<Set>(from, length, padding));
        return bytes;
    }
};

// A text of less than a block, with zeros behind it.
inline block64 load_rest(std::string_view text) {
    padded_text<block_size> rest;
    return load_block(
        rest.copy<instructions::base>(reinterpret_cast<const unsigned char *>(text.data()), text.size(), 0));
}

} // namespace zel
