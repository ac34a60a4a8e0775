// The one loop of all wide conversions. A kernel says what a conversion does with a block of 64 bytes, and
// with a single character; the loop hands it the text block by block and cares for both ends:
//
//     text    |---- block ----|---- block ----|-- rest --|  the rest is copied, with blanks behind it
//     buffer  |---------------------------------|-- short --|  where less than a block's reach is left, the
//                                                              kernel writes into a buffer of the loop's own
//
// A block that a kernel declines goes character by character, and the next one is a block again.
//
// Invariant: a kernel reads nothing behind the text that is left, or behind the K::reads blanks that follow
// it where that is less than K::reads, and it stores at most K::writes bytes, or as many as there is room
// for. So nothing is read behind the text, and nothing stored behind the caller's buffer.

#pragma once

#include "zel/transcode/cursors.h"

#include <concepts>

namespace zel {

enum class status {
    done,      // all that was asked for is converted
    full,      // the next character does not fit
    needs_icu, // undecided: ICU has to convert the text, from its start
    declined,  // by a block step: the block goes character by character
};

// What a buffer that is too small means: nothing of the text, or as many of its characters as fit.
enum class when_full { give_up, keep_characters };

// block_step takes something from an ordinary block, or from a few, and puts what it becomes; where the block
// is none, it moves no cursor and declines. scalar_step takes one character, or one escape sequence: the
// obvious code, against which the tests hold the block step.
template <class K>
concept kernel = requires(K each, cursors &at) {
    requires K::reads >= block_size &&K::reads <= 2 * block_size;
    requires K::writes >= block_size;
    { K::policy } -> std::convertible_to<when_full>;
    { each.block_step(at) } -> std::same_as<status>;
    { each.scalar_step(at) } -> std::same_as<status>;
};

template <kernel K>
status scalar_steps(K &each, cursors &at, std::size_t bytes) {
    const unsigned char *const end = at.from + std::min(bytes, left(at));
    status answer = status::done;
    while (at.from < end && answer == status::done)
        answer = each.scalar_step(at);
    return answer;
}

template <kernel K>
status take_block(K &each, cursors &at) {
    const status answer = each.block_step(at);
    return answer == status::declined ? scalar_steps(each, at, block_size) : answer;
}

// The rest of a text, which is less than Reads, with as many blanks behind it, which belong to no character
// that begins in front of them. It is copied by vectors whose number does not depend on its length, the last
// ones all from its end, so that no branch has to be guessed.
template <std::size_t Reads>
struct padded_text {
    unsigned char bytes[2 * Reads + vector_size];

    const unsigned char *copy(const unsigned char *from, std::size_t length) {
        for (std::size_t at = 0; at < Reads; at += vector_size)
            store_vector(bytes + length + at, vector_bytes{} + ' ');
        if (length < vector_size) {
            std::memcpy(bytes, from, length);
            return bytes;
        }
        for (std::size_t at = 0; at < Reads; at += vector_size) {
            const std::size_t place = std::min(at, length - vector_size);
            store_vector(bytes + place, load_vector(from + place));
        }
        return bytes;
    }
};

// Takes what is left of a text, or a block of it, on copies where an end is near. Where the result does not
// fit, nothing is taken, or as many characters as fit.
template <kernel K>
status take_block_near_end(K &each, cursors &at) {
    padded_text<K::reads> text;
    unsigned char converted[K::writes];
    const unsigned char *const from = left(at) < K::reads ? text.copy(at.from, left(at)) : at.from;
    const bool is_wide = room(at) >= K::writes;
    unsigned char *const to = is_wide ? at.to : converted;
    cursors part = {from, from + left(at), to, is_wide ? at.to_end : converted + sizeof converted};
    K tried = each;
    const status answer = take_block(tried, part);
    const auto length = static_cast<std::size_t>(part.to - to);
    if (length > room(at) || answer == status::full)
        return K::policy == when_full::give_up ? status::full : scalar_steps(each, at, block_size);
    if (!is_wide)
        std::memcpy(at.to, converted, length);
    at.from += part.from - from;
    at.to += length;
    each = tried;
    return answer;
}

// The cursors and the kernel are copies, which stay in registers: those of the caller might be what a byte is
// stored into, for all that the compiler knows.
template <kernel K>
status transcode(K &kernel, cursors &whole) {
    K each = kernel;
    cursors at = whole;
    status answer = status::done;
    while (answer == status::done && !ended(at))
        answer = left(at) >= K::reads && room(at) >= K::writes ? take_block(each, at)
                                                               : take_block_near_end(each, at);
    kernel = each;
    whole = at;
    return answer;
}

} // namespace zel
