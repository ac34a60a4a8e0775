// The one loop of all wide conversions. A kernel says what a conversion does with a block of 64 bytes, and
// with a single character; the loop hands it the text block by block and cares for both ends:
//
//     text    |---- block ----|---- block ----|-- rest --|  the rest is copied, with blanks behind it
//     buffer  |---------------------------------|-- short --|  where less than a block's reach is left, the
//                                                              kernel writes into a buffer of the loop's own
//
// A block that a kernel declines goes character by character, and the next one is a block again.
//
// Invariant: a kernel reads no further than K::reads bytes from where its step begins, nor, where it takes a
// chunk in one step, than a block from each place of the chunk; and it stores at most K::writes bytes, or as
// many as there is room for. The rest of a text has so many blanks behind it. So nothing is read behind the
// text, and nothing stored behind the caller's buffer.

#pragma once

#include "zel/simd/padded_text.h"
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
// obvious code, against which the tests hold the block step. Where a text may end in a state that is not its
// first one, transcode_text also calls finish(at), which puts what belongs behind it, or says that the text
// is undecided.
template <class K>
concept kernel = requires(K each, cursors &at) {
    requires K::reads >= block_size &&K::reads <= 2 * block_size;
    requires K::writes >= block_size;
    { K::policy } -> std::convertible_to<when_full>;
    { K::set } -> std::convertible_to<instructions>;
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

// Takes what is left of a text, or a block of it, on copies where an end is near. Where the result does not
// fit, nothing is taken, or as many characters as fit.
template <kernel K>
status take_block_near_end(K &each, cursors &at) {
    padded_text<2 * K::reads - block_size> text;
    unsigned char converted[K::writes];
    const unsigned char *const from =
        left(at) < K::reads ? text.template copy<K::set>(at.from, left(at), ' ') : at.from;
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

// What came of a whole text, and where it ends. Text, buffer and answer go by registers: cursors in memory
// would be stored one by one and loaded in pairs, which is slow.
struct transcoded {
    status answer;
    unsigned char *end;
};

template <kernel K>
[[gnu::always_inline]] inline transcoded transcode_text(K &each, std::string_view text,
                                                        std::span<unsigned char> to) {
    cursors at = cursors_of(text, to);
    status answer = transcode(each, at);
    if constexpr (requires { each.finish(at); })
        answer = answer == status::done ? each.finish(at) : answer;
    return {answer, at.to};
}

} // namespace zel
