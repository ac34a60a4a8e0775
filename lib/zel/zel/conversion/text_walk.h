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

constexpr std::size_t turn_text = window + lane_step;
constexpr std::size_t turn_room = 2 * window;

// The text behind its end, to a turn: first a byte that is no character, nor part of one, in any charset that
// has a table.
constexpr unsigned char no_character = 0xFF;

inline bool ended(const byte_pass &pass) {
    return pass.from == pass.from_end;
}

// The last turns, on copies. Three bytes become one at least in any text worth a table, so that where more
// of it is left, the room was too small from the start.
template <class Turn>
[[gnu::noinline, gnu::flatten]] verdict walk_to_end(byte_pass &pass, Turn turn) {
    constexpr std::size_t longest = 3 * turn_room;
    if (left(pass) > longest)
        return verdict::undecided;
    unsigned char text[longest + turn_text];
    unsigned char converted[3 * longest + turn_room];
    byte_pass copy = {text, text + left(pass), converted, std::end(converted)};
    std::memcpy(text, pass.from, left(pass));
    std::memset(text + left(pass), 0, turn_text);
    text[left(pass)] = no_character;
    while (!ended(copy))
        if (!turn(copy))
            return verdict::undecided;
    const auto length = static_cast<std::size_t>(copy.to - converted);
    if (room(pass) < length)
        return verdict::full;
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

} // namespace zel
