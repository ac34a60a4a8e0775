// A walk over a text, turn by turn. A turn takes some characters, one at least, and puts what they become. It
// works in whole steps: it may look at turn_text bytes and store into turn_room bytes, however few of them it
// takes and puts, and so never asks for an end. Where one is near, it gets copies with bytes to spare.
//
// Invariant: nothing is read behind from_end, nothing is written behind to_end.

#pragma once

#include "zel/base/ascii_run.h"

#include <cstring>

namespace zel {

enum class verdict {
    done,      // the whole text is converted
    full,      // it does not fit
    undecided, // for ICU, from the start of the text
};

// A block behind the first few bytes, and the step that looks beyond its end. The most is put of 24 pairs,
// which become three bytes each, and a step of sixteen single ones behind them, which may too.
constexpr std::size_t turn_text = block_size + 2 * lane_step;
constexpr std::size_t turn_room = 2 * block_size;

// What a turn finds behind the end of the text: a byte that ends any run of ASCII and belongs to no character
// that begins in front of it, and zeros.
constexpr unsigned char no_character = 0xFF;

inline bool ended(const byte_pass &pass) {
    return pass.from == pass.from_end;
}

// The last turns, on a copy of the text, and where the room is short with a copy of the result. No byte
// becomes more than three in the end. Three become one at least in nearly all text: where more than that is
// left, the room is too small, or ICU can tell better.
template <class Turn>
[[gnu::noinline, gnu::flatten]] verdict walk_to_end(byte_pass &pass, Turn turn) {
    constexpr std::size_t longest = 3 * turn_room;
    if (left(pass) > longest)
        return verdict::undecided;
    unsigned char text[longest + turn_text];
    unsigned char converted[3 * longest + turn_room];
    std::memset(text + left(pass), 0, turn_text);
    std::memcpy(text, pass.from, left(pass));
    text[left(pass)] = no_character;
    const bool is_wide = room(pass) >= 3 * left(pass) + turn_room;
    unsigned char *const start = is_wide ? pass.to : converted;
    byte_pass copy = {text, text + left(pass), start, is_wide ? pass.to_end : std::end(converted)};
    while (!ended(copy))
        if (!turn(copy))
            return verdict::undecided;
    const auto length = static_cast<std::size_t>(copy.to - start);
    if (room(pass) < length)
        return verdict::full;
    if (!is_wide)
        std::memcpy(pass.to, converted, length);
    pass.to += length;
    return verdict::done;
}

// A turn answers whether it could decide. Its cursors are to be registers: so it is inlined whole, and works
// on a copy of those of the caller, which might be what a byte is stored into for all that the compiler
// knows.
template <class Turn>
[[gnu::flatten]] verdict walk(byte_pass &whole, Turn turn) {
    byte_pass pass = whole;
    while (left(pass) >= turn_text && room(pass) >= turn_room)
        if (!turn(pass))
            return verdict::undecided;
    whole = pass;
    return ended(whole) ? verdict::done : walk_to_end(whole, turn);
}

// Copies the run of ASCII that a block begins with, by a flag for each byte that ends it. Gives the flags
// from its end on: none where the block is all one run, or the text ends with it.
template <ascii_run Run>
bit_per_byte copy_run(byte_pass &pass, const byte_block &block, bit_per_byte others) {
    store_block(pass.to, block);
    const auto length = static_cast<std::size_t>(std::countr_zero(others));
    pass.from += length;
    pass.to += length;
    if (length == block_size) [[unlikely]] {
        copy_blocks<Run>(pass);
        return 0;
    }
    return ended(pass) ? 0 : others >> length;
}

template <ascii_run Run>
bit_per_byte copy_run(byte_pass &pass) {
    const byte_block block = load_block(pass.from);
    return copy_run<Run>(pass, block, ask(block, others_among<Run>));
}

} // namespace zel
