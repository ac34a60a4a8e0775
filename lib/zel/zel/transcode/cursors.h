// Where a conversion has come to, in the text and in the buffer. Characters are taken and put one at a time
// within both ends; copies of whole blocks are for callers that know that there is room.
//
// Invariant: from <= from_end and to <= to_end.

#pragma once

#include "zel/simd/ascii.h"
#include "zel/simd/instructions.h"

#include <algorithm>
#include <span>
#include <string_view>

namespace zel {

struct cursors {
    const unsigned char *from;
    const unsigned char *from_end;
    unsigned char *to;
    unsigned char *to_end;
};

inline cursors cursors_of(std::string_view text, std::span<unsigned char> to) {
    const auto *from = reinterpret_cast<const unsigned char *>(text.data());
    return {from, from + text.size(), to.data(), to.data() + to.size()};
}

inline std::size_t left(const cursors &at) {
    return static_cast<std::size_t>(at.from_end - at.from);
}

inline std::size_t room(const cursors &at) {
    return static_cast<std::size_t>(at.to_end - at.to);
}

inline bool ended(const cursors &at) {
    return at.from == at.from_end;
}

// Behind the end of the text there is a 0, which no cursor moves over.
inline unsigned char peek(const cursors &at, std::size_t ahead = 0) {
    return ahead < left(at) ? at.from[ahead] : 0;
}

inline unsigned char take(cursors &at) {
    return ended(at) ? 0 : *at.from++;
}

inline bool put(cursors &at, unsigned char byte) {
    if (room(at) < 1)
        return false;
    *at.to++ = byte;
    return true;
}

inline bool put(cursors &at, unsigned char first, unsigned char second) {
    if (room(at) < 2)
        return false;
    *at.to++ = first;
    *at.to++ = second;
    return true;
}

inline bool put(cursors &at, std::string_view bytes) {
    if (room(at) < bytes.size())
        return false;
    at.to += bytes.copy(reinterpret_cast<char *>(at.to), bytes.size());
    return true;
}

// Copies a few bytes by whole vectors; up to a vector may be read and stored behind them.
inline void copy_vectors(unsigned char *to, const unsigned char *from, std::size_t length) {
    store_vector(to, load_vector(from));
    for (std::size_t at = vector_size; at < length; at += vector_size)
        store_vector(to + at, load_vector(from + at));
}

// Copies whole blocks of up to so many bytes, as long as a block has none that the predicate is for. Gives
// how many bytes it were.
template <auto &Ends>
[[gnu::always_inline]] inline std::size_t copy_blocks(unsigned char *to, const unsigned char *from,
                                                      std::size_t length) {
    std::size_t copied = 0;
    for (; length - copied >= block_size; copied += block_size) {
        const block64 block = load_block(from + copied);
        if (has_any(block, Ends))
            break;
        store_block(to + copied, block);
    }
    return copied;
}

// The loop stays out of the kernels, whose registers it would take. It has the instructions of its caller: a
// processor is slow where old instructions work on registers of which newer ones have set the upper half.
template <auto &Ends>
[[gnu::noinline]] std::size_t copy_blocks_base(unsigned char *to, const unsigned char *from,
                                               std::size_t length) {
    return copy_blocks<Ends>(to, from, length);
}

template <auto &Ends>
ZEL_AVX2 [[gnu::noinline]] std::size_t copy_blocks_avx2(unsigned char *to, const unsigned char *from,
                                                        std::size_t length) {
    return copy_blocks<Ends>(to, from, length);
}

// Copies a block of which all is kept, and the blocks behind it of which that is true as well: none of their
// bytes is one that the predicate is for.
template <auto &Ends, instructions Set>
inline void copy_kept(cursors &at, const block64 &block) {
    std::size_t length = std::min(left(at), block_size);
    store_block(at.to, block);
    const std::size_t most = std::min(left(at), room(at)) - length;
    if (most >= block_size)
        length += Set == instructions::avx2 ? copy_blocks_avx2<Ends>(at.to + length, at.from + length, most)
                                            : copy_blocks_base<Ends>(at.to + length, at.from + length, most);
    at.from += length;
    at.to += length;
}

} // namespace zel
