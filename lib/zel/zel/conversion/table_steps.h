// The steps of a walk by a table: characters one by one, and pairs of bytes and their characters of three
// bytes in UTF-8 several at a time, without a branch on what they are. A step is part of a turn (see
// text_walk.h).
//
// Invariant: a step takes only what the table decides; where it cannot go on, it says so.

#pragma once

#include "zel/base/utf8.h"
#include "zel/conversion/code_table.h"
#include "zel/conversion/text_walk.h"

#include <algorithm>
#include <bit>

namespace zel {

using code_lanes = std::uint16_t __attribute__((vector_size(lane_step)));

// Four bytes are stored, and as many kept as the character has.
inline bool put_character(byte_pass &pass, const utf8_character &character) {
    std::memcpy(pass.to, &character, sizeof character);
    pass.to += character.length;
    return character.length != 0;
}

inline bool is_pair(charset_code code) {
    return code[0] != 0;
}

inline bool put_code(byte_pass &pass, charset_code code) {
    pass.to[0] = code[0];
    pass.to += is_pair(code);
    *pass.to++ = code[1];
    return code[1] != 0;
}

inline std::size_t pair_index(const unsigned char *pair) {
    return (static_cast<std::size_t>(pair[0]) << 8 | pair[1]) & 0x7FFF;
}

inline bool convert_character(const code_table &table, byte_pass &pass) {
    const unsigned char byte = *pass.from;
    const bool leads = table.leads[byte];
    const utf8_character &character = leads ? table.pairs[pair_index(pass.from)] : table.singles[byte];
    pass.from += leads ? 2 : 1;
    return put_character(pass, character);
}

// What begins within the next bytes, character by character.
inline bool convert_characters(const code_table &table, byte_pass &pass, std::size_t bytes) {
    const unsigned char *const end = pass.from + bytes;
    bool found = true;
    while (pass.from < end && found)
        found = convert_character(table, pass);
    return found;
}

// Takes a character of the Basic Multilingual Plane; 0 where there is none, or a broken or overlong one.
inline unsigned take_code_point(byte_pass &pass) {
    const unsigned char *from = pass.from;
    if (from[0] < 0x80) {
        pass.from += 1;
        return from[0];
    }
    if (!is_tail(from[1]))
        return 0;
    if ((from[0] & 0xF0) == 0xE0) {
        pass.from += 3;
        const unsigned code_point = code_point_of_three(from);
        return is_tail(from[2]) && code_point >= 0x800 ? code_point : 0;
    }
    pass.from += 2;
    return from[0] >= 0xC2 && from[0] < 0xE0 ? code_point_of_two(from) : 0;
}

inline bool convert_code_point(const code_table &table, byte_pass &pass) {
    return put_code(pass, table.codes[take_code_point(pass)]);
}

// Pairs are looked up all, without a branch, and as many kept as there are. Gives the end of what it put;
// null where the table lacks one.
template <unsigned Most>
unsigned char *put_pairs(const code_table &table, const unsigned char *from, unsigned char *to,
                         std::size_t pairs) {
    const unsigned kept = (1U << pairs) - 1;
    bool found = true;
    for (std::size_t i = 0; i < Most; ++i) {
        const utf8_character &character = table.pairs[pair_index(from + 2 * i)];
        const unsigned mask = 0U - (kept >> i & 1);
        std::memcpy(to, &character, sizeof character);
        to += character.length & mask;
        found &= (character.length | ~mask) != 0;
    }
    return found ? to : nullptr;
}

// Takes pairs by steps of so many, down to a rest of less than that many. False in front of a step where the
// table lacks one.
template <unsigned Most, unsigned Rest>
bool take_pairs(const code_table &table, byte_pass &at, std::size_t &pairs) {
    while (pairs >= Rest) {
        const std::size_t step = Rest == Most ? Most : std::min<std::size_t>(pairs, Most);
        unsigned char *const to = put_pairs<Most>(table, at.from, at.to, step);
        if (!to) [[unlikely]]
            return false;
        at.from += 2 * step;
        at.to = to;
        pairs -= step;
    }
    return true;
}

// By eight while text is dense; words of mixed text are mostly shorter than five.
inline bool convert_pairs(const code_table &table, byte_pass &pass, std::size_t pairs) {
    byte_pass at = pass;
    std::size_t rest = pairs;
    if (!take_pairs<8, 8>(table, at, rest) || !take_pairs<4, 1>(table, at, rest)) [[unlikely]] {
        pass = at;
        return convert_characters(table, pass, 2 * std::min<std::size_t>(rest, 8));
    }
    pass.from += 2 * pairs;
    pass.to = at.to;
    return true;
}

// The pairs that come next, by a flag for each byte that can lead one.
inline std::size_t pairs_ahead(const byte_pass &pass, bit_per_byte leads) {
    const auto bytes = static_cast<std::size_t>(std::countr_zero(~leads & 0x5555'5555'5555'5555));
    return std::min(bytes, left(pass)) / 2;
}

// The code points that bytes of UTF-8 would be as leads, seconds and thirds of characters of three bytes.
inline void put_code_points(std::uint16_t *to, signed_bytes leads, signed_bytes seconds,
                            signed_bytes thirds) {
    const auto middle = reinterpret_cast<unsigned_bytes>(seconds);
    const unsigned_bytes high = reinterpret_cast<unsigned_bytes>(leads) << 4 | (middle >> 2 & 0x0F);
    const unsigned_bytes low = middle << 6 | (reinterpret_cast<unsigned_bytes>(thirds) & 0x3F);
    const unsigned_bytes first = is_little_endian ? low : high, second = is_little_endian ? high : low;
    const unsigned_bytes pairs[] = {
        __builtin_shufflevector(first, second, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23),
        __builtin_shufflevector(first, second, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31)};
    std::memcpy(to, pairs, sizeof pairs);
}

// Characters of three bytes, up to five, to pairs, the same way. Lead byte E0 is none of theirs: its overlong
// forms would need another look, and no character of its own becomes a pair anywhere.
constexpr std::size_t most_triples = 5;

// What is broken counts as the code point 0, which becomes no pair. Gives how many do, from the first on.
inline std::size_t put_triples(const code_table &table, const unsigned char *from, unsigned char *to,
                               std::size_t count) {
    const signed_bytes leads = load_bytes(from);
    const signed_bytes seconds = load_bytes(from + 1);
    const signed_bytes thirds = load_bytes(from + 2);
    const signed_bytes whole = is_between(leads, 0xE1, 0xEF) & are_tails(seconds) & are_tails(thirds);
    std::array<std::uint16_t, lane_step> code_points; // at each position, of which one in three is meant
    put_code_points(code_points.data(), leads & whole, seconds & whole, thirds & whole);
    const auto code = [&](std::size_t at) {
        return std::bit_cast<std::uint16_t>(table.codes[code_points[at]]);
    };
    const code_lanes codes = {code(0), code(3), code(6), code(9), code(12)};
    std::memcpy(to, &codes, sizeof codes);
    const unsigned singles = bits_of(is_byte(reinterpret_cast<signed_bytes>(codes), 0)) & 0b01'01'01'01'01U;
    return static_cast<std::size_t>(std::countr_zero(singles | 1U << 2 * count)) / 2;
}

// How many bytes outside ASCII come next, as far as full steps of triples reach.
inline std::size_t run_ahead(bit_per_byte high) {
    constexpr std::size_t most = block_size - block_size % (3 * most_triples);
    return static_cast<std::size_t>(std::countr_zero(~high | bit_per_byte{1} << most));
}

// In one step, as runs between characters are mostly short.
inline void copy_between(const unsigned char *from, byte_pass &pass, std::size_t length) {
    std::memcpy(pass.to, from, lane_step);
    for (std::size_t at = lane_step; at < length; at += lane_step)
        std::memcpy(pass.to + at, from + at, lane_step);
    pass.to += length;
}

// Characters of two and three bytes in any order, by the bits of their leads, and the ASCII in front of each.
// Ends behind the last of them.
inline bool put_by_leads(const code_table &table, byte_pass &pass, bit_per_byte leads,
                         bit_per_byte leads_of_three) {
    std::size_t at = 0;
    bool found = true;
    for (; leads; leads &= leads - 1) {
        const auto lead = static_cast<std::size_t>(std::countr_zero(leads));
        const unsigned char *const from = pass.from + lead;
        const bool is_three = leads_of_three >> lead & 1;
        const unsigned code_point = is_three ? code_point_of_three(from) : code_point_of_two(from);
        copy_between(pass.from + at, pass, lead - at);
        found &= put_code(pass, table.codes[code_point]) && !(is_three && code_point < 0x800);
        at = lead + (is_three ? 3 : 2);
    }
    pass.from += at;
    return found;
}

// Up to the first character that becomes no pair, from where the caller goes on in a way of its own.
template <class GoOn>
bool convert_triples(const code_table &table, byte_pass &pass, std::size_t triples, GoOn go_on) {
    for (std::size_t done = 0; done < triples; done += most_triples) {
        const std::size_t step = std::min(triples - done, most_triples);
        const std::size_t put = put_triples(table, pass.from + 3 * done, pass.to + 2 * done, step);
        if (put < step) [[unlikely]] {
            pass.from += 3 * (done + put);
            pass.to += 2 * (done + put);
            return go_on();
        }
    }
    pass.from += 3 * triples;
    pass.to += 2 * triples;
    return true;
}

} // namespace zel
