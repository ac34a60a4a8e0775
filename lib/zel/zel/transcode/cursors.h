// Where a conversion has come to, in the text and in the buffer. Characters are taken and put one at a time
// within both ends; copies of whole blocks are for callers that know that there is room.
//
// Invariant: from <= from_end and to <= to_end.

#pragma once

#include "zel/simd/ascii.h"

#include <algorithm>
#include <string_view>

namespace zel {

struct cursors {
    const unsigned char *from;
    const unsigned char *from_end;
    unsigned char *to;
    unsigned char *to_end;
};

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

// Copies a block of which all is kept, and the blocks behind it of which that is true as well.
template <ascii Kept>
void copy_kept_blocks(cursors &at, block64 block) {
    const std::size_t length = std::min(left(at), block_size);
    store_block(at.to, block);
    at.from += length;
    at.to += length;
    while (left(at) >= block_size && room(at) >= block_size) {
        block = load_block(at.from);
        if (has_any(block, are_not_kept<Kept>))
            return;
        store_block(at.to, block);
        at.from += block_size;
        at.to += block_size;
    }
}

} // namespace zel
