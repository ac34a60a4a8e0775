// The direct converters by wide steps. A text goes through blocks, in which a bit for each byte tells where
// runs end. A step takes the run of single bytes that stands next and the run of pairs behind it; their ends
// are found by those bits and their bytes copied by whole lanes, so that the short runs of mixed text cost
// hardly a branch. What is irregular stays where it is and goes by units, byte by byte.
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

using run_bits = std::uint64_t; // that of the first byte lowest

inline constexpr std::size_t longest_escape = 3;
inline constexpr std::size_t seen_bits = window - 7; // a map is read from whole bytes on
inline constexpr std::size_t longest_pairs = seen_bits - 1;
inline constexpr std::size_t longest_singles = longest_pairs - longest_escape;

// A run of each kind with an escape sequence before or behind it.
inline constexpr std::size_t step_reach = 2 * (window + longest_escape);
inline constexpr std::size_t text_block_size = 32 * window;

inline run_bits little_endian(run_bits bits) {
    return is_little_endian ? bits : __builtin_bswap64(bits);
}

// Where runs of one kind end in a block: with bytes that go on with none, and behind the text.
struct run_map {
    unsigned char bits[(text_block_size + 2 * window) / 8];

    void put(std::size_t place, run_bits ends) {
        ends = little_endian(ends);
        std::memcpy(bits + place / 8, &ends, sizeof ends);
    }

    // At least as many as seen_bits.
    run_bits from(std::size_t place) const {
        run_bits ends;
        std::memcpy(&ends, bits + place / 8, sizeof ends);
        return little_endian(ends) >> place % 8;
    }
};

inline std::size_t first_of(run_bits bits) {
    return static_cast<unsigned>(__builtin_ctzll(bits));
}

inline std::size_t length_of_singles(run_bits ends) {
    return first_of(ends | run_bits{1} << longest_singles);
}

// Pairs begin at every other place. What comes from behind the window counts as an end.
inline std::size_t length_of_pairs(run_bits ends, std::size_t start) {
    const auto capped = static_cast<std::int64_t>(ends | ~run_bits{0} << longest_pairs);
    return first_of(static_cast<run_bits>(capped >> start) & 0x5555555555555555);
}

// A stretch of the text, a window at least, with zeros behind it.
struct text_block {
    unsigned char bytes[text_block_size + 3 * window];
    run_map singles;
    run_map pairs;
};

inline void copy_text(text_block &block, const unsigned char *from, std::size_t length) {
    for (std::size_t at = 0; at + window <= length; at += window)
        std::memcpy(block.bytes + at, from + at, window);
    std::memcpy(block.bytes + length - window, from + length - window, window);
    for (std::size_t at = 0; at < 3 * window; at += window)
        std::memset(block.bytes + length + at, 0, window);
}

struct window_ends {
    run_bits singles;
    run_bits pairs;
};

// Of both kinds at once, since they are told by much the same comparisons.
template <class Text>
window_ends ends_in_window(const unsigned char *bytes) {
    const window_bytes seen = load_window(bytes);
    return {bits_of(seen, Text::ends_singles), bits_of(seen, Text::ends_pairs)};
}

inline void put_ends(text_block &block, std::size_t place, const window_ends &ends) {
    block.singles.put(place, ends.singles);
    block.pairs.put(place, ends.pairs);
}

// Bits of a window that begins in front of a text's last stretch, with the end of the text put in.
inline run_bits last_bits(run_bits bits, std::size_t length) {
    return bits >> 1 >> ~length % window | ~run_bits{0} << length % window;
}

// The last window overlaps the one before it, so that nothing behind the text is read.
template <class Text>
void find_ends(text_block &block, const unsigned char *from, std::size_t length) {
    for (std::size_t at = 0; at + window <= length; at += window)
        put_ends(block, at, ends_in_window<Text>(from + at));
    const window_ends last = ends_in_window<Text>(from + length - window);
    const std::size_t place = length / window * window;
    put_ends(block, place, {last_bits(last.singles, length), last_bits(last.pairs, length)});
    put_ends(block, place + window, {~run_bits{0}, ~run_bits{0}});
    if (Text::needs_trail)
        block.pairs.bits[(length - 1) / 8] |= static_cast<unsigned char>(1U << (length - 1) % 8);
}

inline void copy_singles(byte_pass &pass, std::size_t length) {
    std::memcpy(pass.to, pass.from, window);
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

// Steps that begin in front of a place. They work on a state of their own: that of the caller might be what a
// byte is stored into, for all that the compiler knows. False where a unit did not fit.
template <class Text>
bool take_steps(Text &text, const text_block &block, input &from, const unsigned char *before, output &to) {
    Text own = text;
    byte_pass pass = pass_between(from, to);
    while (pass.from < before && room(pass) >= step_reach) {
        const unsigned char *const start = pass.from;
        const auto place = static_cast<std::size_t>(start - block.bytes);
        if (own.takes_step(*start))
            own.step(block.singles.from(place), block.pairs.from(place), pass);
        if (pass.from != start)
            continue;
        settle(pass, from, to);
        text = own;
        do
            if (!text.take_unit(from, to))
                return false;
        while (from.at < before && !text.takes_step(*from.at));
        own = text;
        pass = pass_between(from, to);
    }
    settle(pass, from, to);
    text = own;
    return true;
}

template <class Text>
bool take_all_steps(Text &text, input &from, output &to) {
    text_block block;
    while (left(from) >= window && room_left(to) >= step_reach) {
        const std::size_t length = std::min(left(from), text_block_size);
        copy_text(block, from.at, length);
        find_ends<Text>(block, from.at, length);
        input part = {block.bytes, block.bytes + length};
        const std::size_t steps = length == left(from) ? length : length - step_reach;
        const bool fits = take_steps(text, block, part, block.bytes + steps, to);
        from.at += part.at - block.bytes;
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
bool step_through_shifts(run_bits singles, run_bits pairs, byte_pass &pass, bool in_pairs) {
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

using pair_words = std::int16_t __attribute__((vector_size(lane_step)));
using unsigned_words = std::uint16_t __attribute__((vector_size(lane_step)));

template <class Number>
struct number_pair {
    Number first;
    Number second;
};

// The pairs of a lane as numbers, to do arithmetic on.
inline number_pair<pair_words> pairs_of(signed_bytes bytes) {
    const auto low = reinterpret_cast<pair_words>(bytes) & 0xFF;
    const auto high = reinterpret_cast<pair_words>(reinterpret_cast<unsigned_words>(bytes) >> 8);
    return is_little_endian ? number_pair<pair_words>{low, high} : number_pair<pair_words>{high, low};
}

inline void store_pairs(unsigned char *to, const number_pair<pair_words> &pairs) {
    const pair_words low = (is_little_endian ? pairs.first : pairs.second) & 0xFF;
    const pair_words high = is_little_endian ? pairs.second : pairs.first;
    store_bytes(to, reinterpret_cast<signed_bytes>(low | high << 8));
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
    if (to.start && !take_all_steps(text, from, to))
        return false;
    while (!ended(from))
        if (!text.take_unit(from, to))
            return false;
    return true;
}

} // namespace zel
