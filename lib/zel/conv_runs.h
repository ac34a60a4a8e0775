// The direct converters by wide steps. A text goes through stretches, in which a bit for each byte tells
// where runs end. A step takes the run of single bytes that stands next and the run of pairs behind it; their
// ends are found by those bits and their bytes copied by whole lanes, so that the short runs of mixed text
// cost hardly a branch. What is irregular stays where it is and goes by units, byte by byte.
//
// Invariant: a step begins where step_reach bytes may be read and as many written; what it writes behind its
// runs is overwritten by what follows or left as slack within the buffer.

#pragma once

#include "zel/base/ascii_run.h"
#include "zel/base/input.h"
#include "zel/base/output.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace zel {

inline constexpr std::size_t longest_escape = 3;
inline constexpr std::size_t seen_bits = block_size - 7; // a map is read from whole bytes on
inline constexpr std::size_t longest_pairs = seen_bits - 1;
inline constexpr std::size_t longest_singles = longest_pairs - longest_escape;

// A run of each kind with an escape sequence before or behind it.
inline constexpr std::size_t step_reach = 2 * (block_size + longest_escape);
static_assert(step_reach >= longest_singles + longest_pairs + 2 * longest_escape + lane_step);

inline constexpr std::size_t stretch_size = 32 * block_size;

inline bit_per_byte little_endian(bit_per_byte bits) {
    return is_little_endian ? bits : __builtin_bswap64(bits);
}

// Where runs of one kind end in a stretch: with bytes that go on with none, and behind the text.
struct run_map {
    unsigned char bits[(stretch_size + 2 * block_size) / 8];

    void put(std::size_t place, bit_per_byte ends) {
        ends = little_endian(ends);
        std::memcpy(bits + place / 8, &ends, sizeof ends);
    }

    // At least as many as seen_bits.
    bit_per_byte from(std::size_t place) const {
        bit_per_byte ends;
        std::memcpy(&ends, bits + place / 8, sizeof ends);
        return little_endian(ends) >> place % 8;
    }
};

inline std::size_t first_of(bit_per_byte bits) {
    return static_cast<std::size_t>(std::countr_zero(bits));
}

inline std::size_t length_of_singles(bit_per_byte ends) {
    return first_of(ends | bit_per_byte{1} << longest_singles);
}

// Pairs begin at every other place. What comes from behind the block counts as an end.
inline std::size_t length_of_pairs(bit_per_byte ends, std::size_t start) {
    const auto capped = static_cast<std::int64_t>(ends | ~bit_per_byte{0} << longest_pairs);
    return first_of(static_cast<bit_per_byte>(capped >> start) & 0x5555555555555555);
}

// A stretch of the text, a block at least, with zeros behind it.
struct text_stretch {
    unsigned char bytes[stretch_size + 3 * block_size];
    run_map singles;
    run_map pairs;
};

inline void copy_text(text_stretch &stretch, const unsigned char *from, std::size_t length) {
    for (std::size_t at = 0; at + block_size <= length; at += block_size)
        std::memcpy(stretch.bytes + at, from + at, block_size);
    std::memcpy(stretch.bytes + length - block_size, from + length - block_size, block_size);
    for (std::size_t at = 0; at < 3 * block_size; at += block_size)
        std::memset(stretch.bytes + length + at, 0, block_size);
}

struct block_ends {
    bit_per_byte singles;
    bit_per_byte pairs;
};

// Of both kinds at once, since they are told by much the same comparisons.
template <class Text>
block_ends ends_in_block(const unsigned char *bytes) {
    const byte_block block = load_block(bytes);
    return {ask(block, Text::ends_singles), ask(block, Text::ends_pairs)};
}

inline void put_ends(text_stretch &stretch, std::size_t place, const block_ends &ends) {
    stretch.singles.put(place, ends.singles);
    stretch.pairs.put(place, ends.pairs);
}

// Bits of the last block, which overlaps the one before it, from where that one ends; behind the text all
// set.
inline bit_per_byte last_bits(bit_per_byte bits, std::size_t length) {
    const std::size_t behind = length % block_size;
    return (bits >> 1 >> (block_size - 1 - behind)) | ~bit_per_byte{0} << behind; // never a shift by 64
}

// Nothing behind the text is read.
template <class Text>
void find_ends(text_stretch &stretch, const unsigned char *from, std::size_t length) {
    for (std::size_t at = 0; at + block_size <= length; at += block_size)
        put_ends(stretch, at, ends_in_block<Text>(from + at));
    const block_ends last = ends_in_block<Text>(from + length - block_size);
    const std::size_t place = length / block_size * block_size;
    put_ends(stretch, place, {last_bits(last.singles, length), last_bits(last.pairs, length)});
    put_ends(stretch, place + block_size, {~bit_per_byte{0}, ~bit_per_byte{0}});
    if (Text::needs_trail)
        stretch.pairs.bits[(length - 1) / 8] |= static_cast<unsigned char>(1U << (length - 1) % 8);
}

inline void copy_singles(byte_pass &pass, std::size_t length) {
    std::memcpy(pass.to, pass.from, block_size);
    pass.from += length;
    pass.to += length;
}

// A word of mixed text is within one lane, and a line of dense text within four.
template <class Change>
void copy_pairs(byte_pass &pass, std::size_t length, Change change) {
    change(pass.to, pass.from);
    for (std::size_t at = lane_step; at < length; at += lane_step)
        change(pass.to + at, pass.from + at);
    pass.from += length;
    pass.to += length;
}

inline byte_pass pass_between(const input &from, const output &to) {
    auto *const start = reinterpret_cast<unsigned char *>(to.start) + to.length;
    return {from.at, from.end, start, start + room_left(to)};
}

// A pair that the end of the text cuts off has been read with the zero behind it.
inline void settle(const byte_pass &pass, input &from, output &to) {
    from.at = std::min(pass.from, from.end);
    to.length = static_cast<std::size_t>(reinterpret_cast<char *>(pass.to) - to.start);
}

// A unit, and all others behind it that no step takes.
template <class Text>
bool take_units(Text &text, input &from, const unsigned char *before, output &to) {
    do
        if (!text.take_unit(from, to))
            return false;
    while (from.at < before && !text.takes_step(*from.at));
    return true;
}

// Steps that begin in front of a place. They work on a state of their own: that of the caller might be what a
// byte is stored into, for all that the compiler knows. False where a unit did not fit.
template <class Text>
bool take_steps(Text &text, const text_stretch &stretch, input &from, const unsigned char *before,
                output &to) {
    Text own = text;
    byte_pass pass = pass_between(from, to);
    while (pass.from < before && room(pass) >= step_reach) {
        const unsigned char *const start = pass.from;
        const auto place = static_cast<std::size_t>(start - stretch.bytes);
        if (own.takes_step(*start))
            own.step(stretch.singles.from(place), stretch.pairs.from(place), pass);
        if (pass.from != start)
            continue;
        settle(pass, from, to);
        text = own;
        if (!take_units(text, from, before, to))
            return false;
        own = text;
        pass = pass_between(from, to);
    }
    settle(pass, from, to);
    text = own;
    return true;
}

template <class Text>
bool take_all_steps(Text &text, input &from, output &to) {
    text_stretch stretch;
    while (left(from) >= block_size && room_left(to) >= step_reach) {
        const std::size_t length = std::min(left(from), stretch_size);
        copy_text(stretch, from.at, length);
        find_ends<Text>(stretch, from.at, length);
        input part = {stretch.bytes, stretch.bytes + length};
        const std::size_t steps = length == left(from) ? length : length - step_reach;
        const bool fits = take_steps(text, stretch, part, stretch.bytes + steps, to);
        from.at += part.at - stretch.bytes;
        if (!fits)
            return false;
    }
    return true;
}

// 7-bit text that shifts between single bytes and pairs: single bytes up to an opening sequence, and the
// pairs behind it up to a closing one. True if the step ends in pairs. Of a charset it takes
//   opening, closing           the lengths of the sequences
//   opens_pairs, closes_pairs  whether one stands at a place
//   change_pairs               copies and changes the pairs of a lane
template <class Charset>
bool step_through_shifts(bit_per_byte singles, bit_per_byte pairs, byte_pass &pass, bool in_pairs) {
    std::size_t start = 0;
    if (!in_pairs) {
        start = length_of_singles(singles);
        copy_singles(pass, start);
        if (!Charset::opens_pairs(pass.from))
            return false;
        pass.from += Charset::opening;
        start += Charset::opening;
    }
    copy_pairs(pass, length_of_pairs(pairs, start), Charset::change_pairs);
    if (!Charset::closes_pairs(pass.from))
        return true;
    pass.from += Charset::closing;
    return false;
}

inline void copy_with_high_bits(unsigned char *to, const unsigned char *from) {
    store_bytes(to, load_bytes(from) | static_cast<signed char>(0x80));
}

// What a text of some charset is, which holds the state in which its next byte is read:
//   ends_singles, ends_pairs    flag the bytes with which no single byte, and no pair, of a run begins
//   needs_trail                 true if a pair is no pair where the text ends in it
//   takes_step(byte)            false where a step would take nothing
//   step(singles, pairs, pass)  takes what it can from where these ends of runs begin, maybe nothing
//   take_unit(from, to)         false where the output is full
template <class Text>
bool convert_by_steps(Text &text, input from, output &to) {
    const std::string_view whole(reinterpret_cast<const char *>(from.at), left(from));
    if (to.start && !overlap(whole, {to.start, to.size}) && !take_all_steps(text, from, to))
        return false;
    while (!ended(from))
        if (!text.take_unit(from, to))
            return false;
    return true;
}

} // namespace zel
