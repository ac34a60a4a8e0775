#include "zel/conversion/table_conversion.h"

#include <algorithm>
#include <string_view>

namespace zel {
namespace {

// Four bytes are stored, and as many kept as the character has.
bool put_character(byte_pass &pass, const utf8_character &character) {
    std::memcpy(pass.to, &character, sizeof character);
    pass.to += character.length;
    return character.length != 0;
}

bool is_pair(charset_code code) {
    return code[0] != 0;
}

bool put_code(byte_pass &pass, charset_code code) {
    pass.to[0] = code[0];
    pass.to += is_pair(code);
    *pass.to++ = code[1];
    return code[1] != 0;
}

void put_bytes(byte_pass &pass, std::string_view bytes) {
    pass.to += bytes.copy(reinterpret_cast<char *>(pass.to), bytes.size());
}

std::size_t pair_index(const unsigned char *pair) {
    return (static_cast<std::size_t>(pair[0]) << 8 | pair[1]) & 0x7FFF;
}

bool convert_character(const code_table &table, byte_pass &pass) {
    const unsigned char byte = *pass.from;
    const bool leads = table.leads[byte];
    const utf8_character &character = leads ? table.pairs[pair_index(pass.from)] : table.singles[byte];
    pass.from += leads ? 2 : 1;
    return put_character(pass, character);
}

// What begins within the next bytes, character by character.
bool convert_characters(const code_table &table, byte_pass &pass, std::size_t bytes) {
    const unsigned char *const end = pass.from + bytes;
    bool found = true;
    while (pass.from < end && found)
        found = convert_character(table, pass);
    return found;
}

constexpr bool is_continuation(unsigned char byte) {
    return (byte & 0xC0) == 0x80;
}

constexpr unsigned code_point_of_two(const unsigned char *from) {
    return (from[0] & 0x1FU) << 6 | (from[1] & 0x3FU);
}

constexpr unsigned code_point_of_three(const unsigned char *from) {
    return (from[0] & 0x0FU) << 12 | (from[1] & 0x3FU) << 6 | (from[2] & 0x3FU);
}

// Takes a character of the Basic Multilingual Plane; 0 where there is none, or a broken or overlong one.
unsigned take_code_point(byte_pass &pass) {
    const unsigned char *from = pass.from;
    if (from[0] < 0x80) {
        pass.from += 1;
        return from[0];
    }
    if (!is_continuation(from[1]))
        return 0;
    if ((from[0] & 0xF0) == 0xE0) {
        pass.from += 3;
        const unsigned code_point = code_point_of_three(from);
        return is_continuation(from[2]) && code_point >= 0x800 ? code_point : 0;
    }
    pass.from += 2;
    return from[0] >= 0xC2 && from[0] < 0xE0 ? code_point_of_two(from) : 0;
}

bool convert_code_point(const code_table &table, byte_pass &pass) {
    return put_code(pass, table.codes[take_code_point(pass)]);
}

// Copies the run of ASCII that a window begins with, by a flag for each byte that ends it. Gives the flags
// from its end on: none where the window is all one run, or the text ends with it.
template <ascii_run Run>
std::uint64_t copy_run(byte_pass &pass, const window_bytes &seen, std::uint64_t others) {
    store_window(pass.to, seen);
    const auto length = static_cast<std::size_t>(std::countr_zero(others));
    pass.from += length;
    pass.to += length;
    if (length == window) [[unlikely]]
        return copy_windows<Run>(pass), 0;
    return ended(pass) ? 0 : others >> length;
}

template <ascii_run Run>
std::uint64_t copy_run(byte_pass &pass) {
    const window_bytes seen = load_window(pass.from);
    return copy_run<Run>(pass, seen, bits_of(seen, others_among<Run>));
}

// Pairs are looked up all, without a branch, and as many kept as there are. Gives the end of what it put;
// null where the table lacks one.
template <unsigned Most>
unsigned char *put_pairs(const code_table &table, const unsigned char *from, unsigned char *to,
                         std::size_t pairs) {
    const unsigned kept = (1U << pairs) - 1;
    bool found = true;
    for (unsigned i = 0; i < Most; ++i) {
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
bool convert_pairs(const code_table &table, byte_pass &pass, std::size_t pairs) {
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
std::size_t pairs_ahead(const byte_pass &pass, std::uint64_t leads) {
    const auto bytes = static_cast<std::size_t>(std::countr_zero(~leads & 0x5555'5555'5555'5555));
    return std::min(bytes, left(pass)) / 2;
}

// The code points that bytes of UTF-8 would be as leads, seconds and thirds of characters of three bytes.
void put_code_points(std::uint16_t *to, signed_bytes leads, signed_bytes seconds, signed_bytes thirds) {
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

using code_lanes = std::uint16_t __attribute__((vector_size(lane_step)));
using eight_bytes = unsigned char __attribute__((vector_size(lane_step / 2)));

// What is broken counts as the code point 0, which becomes no pair. Gives how many do, from the first on.
std::size_t put_triples(const code_table &table, const unsigned char *from, unsigned char *to,
                        std::size_t count) {
    const signed_bytes leads = load_bytes(from);
    const signed_bytes seconds = load_bytes(from + 1);
    const signed_bytes thirds = load_bytes(from + 2);
    const signed_bytes whole = is_between(leads, 0xE1, 0xEF) & is_tail(seconds) & is_tail(thirds);
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
std::size_t run_ahead(std::uint64_t high) {
    constexpr std::size_t most = window - window % (3 * most_triples);
    return static_cast<std::size_t>(std::countr_zero(~high | std::uint64_t{1} << most));
}

// The next character, and those behind it until three bytes become a pair again.
template <class Convert>
bool convert_others(byte_pass &pass, std::size_t bytes, Convert convert) {
    const unsigned char *const end = pass.from + bytes;
    bool is_triple = false;
    bool found = true;
    while (pass.from < end && found && !is_triple) {
        const byte_pass before = pass;
        found = convert();
        is_triple = pass.from == before.from + 3 && pass.to == before.to + 2;
    }
    return found;
}

// Up to the first that is no such character, and on behind it.
template <class Convert>
bool convert_triples(const code_table &table, byte_pass &pass, std::size_t triples, Convert convert) {
    for (std::size_t done = 0; done < triples; done += most_triples) {
        const std::size_t step = std::min(triples - done, most_triples);
        const std::size_t put = put_triples(table, pass.from + 3 * done, pass.to + 2 * done, step);
        if (put < step) [[unlikely]] {
            pass.from += 3 * (done + put);
            pass.to += 2 * (done + put);
            return convert_others(pass, std::min(3 * (triples - done - put), left(pass)), convert);
        }
    }
    pass.from += 3 * triples;
    pass.to += 2 * triples;
    return true;
}

template <ascii_run Run>
verdict convert_pairs_to_utf8(const code_table &table, byte_pass &whole) {
    return walk(whole, [&](byte_pass &pass) {
        const window_bytes seen = load_window(pass.from);
        if (Run == ascii_run::text && any_of(seen, are_controls)) [[unlikely]]
            return convert_characters(table, pass, std::min(left(pass), lane_step));
        const std::uint64_t high = copy_run<Run>(pass, seen, bits_of(seen, is_high));
        if (!high)
            return true;
        const std::size_t pairs = pairs_ahead(pass, high);
        return pairs ? convert_pairs(table, pass, pairs) : convert_character(table, pass);
    });
}

template <ascii_run Run>
verdict convert_utf8_to_pairs(const code_table &table, byte_pass &whole) {
    return walk(whole, [&](byte_pass &pass) {
        const auto convert_one = [&] { return convert_code_point(table, pass); };
        const window_bytes seen = load_window(pass.from);
        if (Run == ascii_run::text && any_of(seen, are_controls)) [[unlikely]]
            return convert_others(pass, std::min(left(pass), lane_step), convert_one);
        const std::uint64_t high = copy_run<Run>(pass, seen, bits_of(seen, is_high));
        if (!high)
            return true;
        const std::size_t run = run_ahead(high);
        if (run < 3) [[unlikely]]
            return convert_others(pass, std::min(run, left(pass)), convert_one);
        return convert_triples(table, pass, run / 3, convert_one);
    });
}

// Text without pairs, where runs of ASCII are short: byte by byte without a branch.
verdict convert_singles_to_utf8(const code_table &table, byte_pass &whole) {
    return walk(whole, [&](byte_pass &pass) {
        if (!any(is_high(load_bytes(pass.from))))
            return copy_run<ascii_run::whole>(pass), true;
        const std::size_t bytes = std::min(left(pass), lane_step);
        bool found = true;
        for (std::size_t i = 0; i < bytes; ++i)
            found &= put_character(pass, table.singles[pass.from[i]]);
        pass.from += bytes;
        return found;
    });
}

// What the bytes of a window are in UTF-8, a bit for each.
struct utf8_window {
    std::uint64_t high, leads_of_two, leads_of_three, tails;
};

utf8_window look_at(const window_bytes &bytes) {
    const auto all_between = [&](unsigned char first, unsigned char last) {
        return bits_of(bytes, [=](signed_bytes step) { return is_between(step, first, last); });
    };
    return {bits_of(bytes, is_high), all_between(0xC2, 0xDF), all_between(0xE0, 0xEF),
            bits_of(bytes, is_tail)};
}

std::uint64_t leads(const utf8_window &seen) {
    return seen.leads_of_two | seen.leads_of_three;
}

// Whether four characters of two bytes stand side by side: an alphabet of its own, and not letters strewn
// through ASCII.
bool has_words(const utf8_window &seen) {
    const std::uint64_t twos = seen.leads_of_two & seen.leads_of_two >> 2;
    return (twos & twos >> 4) != 0;
}

// How many bytes of the window are whole characters.
std::size_t whole_bytes(const utf8_window &seen, std::size_t bytes) {
    if (bytes < window)
        return bytes;
    const bool cut_last = leads(seen) >> (window - 1);
    const bool cut_two = seen.leads_of_three >> (window - 2) & 1;
    return cut_last ? window - 1 : cut_two ? window - 2 : window;
}

// Whether each lead has its tails, each tail its lead, and no byte is neither. What follows the text is no
// tail of its last character.
bool is_well_formed(const utf8_window &seen, std::size_t bytes) {
    const std::uint64_t expected = leads(seen) << 1 | seen.leads_of_three << 2;
    const std::uint64_t others = seen.high ^ (leads(seen) | seen.tails);
    return expected == seen.tails && (others & ~std::uint64_t{0} >> (window - bytes)) == 0;
}

// In one step, as the runs between them are mostly short.
void copy_between(const unsigned char *from, byte_pass &pass, std::size_t length) {
    std::memcpy(pass.to, from, lane_step);
    for (std::size_t at = lane_step; at < length; at += lane_step)
        [[unlikely]] std::memcpy(pass.to + at, from + at, lane_step);
    pass.to += length;
}

// Each character of a window becomes a byte: the high ones one by one, by their leads, and the runs between
// them.
template <bool HasThrees>
bool put_singles(const code_table &table, byte_pass &pass, const utf8_window &seen, std::size_t bytes) {
    std::size_t at = 0;
    unsigned char lowest = 1;
    for (std::uint64_t rest = leads(seen) & ~std::uint64_t{0} >> (window - bytes); rest; rest &= rest - 1) {
        const auto lead = static_cast<std::size_t>(std::countr_zero(rest));
        const bool is_three = HasThrees && (seen.leads_of_three >> lead & 1);
        const unsigned char *from = pass.from + lead;
        const unsigned code_point = is_three ? code_point_of_three(from) : code_point_of_two(from);
        const unsigned char code = is_three && code_point < 0x800 ? 0 : table.codes[code_point][1];
        copy_between(pass.from + at, pass, lead - at);
        *pass.to++ = code;
        lowest = std::min(lowest, code);
        at = lead + (is_three ? 3 : 2);
    }
    copy_between(pass.from + at, pass, bytes - at);
    pass.from += bytes;
    return lowest != 0;
}

// Eight numbers out of as many characters of two bytes.
code_lanes code_points_of_twos(const unsigned char *from) {
    code_lanes twos;
    std::memcpy(&twos, from, sizeof twos);
    return is_little_endian ? (twos & 0x1F) << 6 | (twos >> 8 & 0x3F)
                            : (twos >> 8 & 0x1F) << 6 | (twos & 0x3F);
}

// Eight characters of two bytes are looked up, without a branch. False where one of those that the bytes hold
// becomes none.
bool put_twos(const code_table &table, const unsigned char *from, unsigned char *to, std::size_t bytes) {
    const code_lanes code_points = code_points_of_twos(from);
    const auto code = [&](std::size_t i) {
        return std::bit_cast<std::uint16_t>(table.codes[code_points[i]]);
    };
    const code_lanes codes = {code(0), code(1), code(2), code(3), code(4), code(5), code(6), code(7)};
    const auto singles = __builtin_convertvector(is_little_endian ? codes >> 8 : codes, eight_bytes);
    std::memcpy(to, &singles, sizeof singles);
    return (bits_of(reinterpret_cast<signed_bytes>(codes == 0)) & ((1U << bytes) - 1)) == 0;
}

// The same for a window where they stand side by side: word by word.
bool put_words(const code_table &table, byte_pass &pass, const utf8_window &seen, std::size_t bytes) {
    const unsigned char *const end = pass.from + bytes;
    bool found = true;
    for (std::uint64_t rest = seen.high & ~std::uint64_t{0} >> (window - bytes); rest;) {
        const auto blank = static_cast<std::size_t>(std::countr_zero(rest));
        copy_between(pass.from, pass, blank);
        pass.from += blank;
        rest >>= blank;
        const auto word = static_cast<std::size_t>(std::countr_zero(~rest | std::uint64_t{1} << lane_step));
        rest >>= word;
        found &= put_twos(table, pass.from, pass.to, word);
        pass.from += word;
        pass.to += word / 2;
    }
    copy_between(pass.from, pass, static_cast<std::size_t>(end - pass.from));
    pass.from = end;
    return found;
}

bool convert_window_to_singles(const code_table &table, byte_pass &pass) {
    const utf8_window seen = look_at(load_window(pass.from));
    const std::size_t bytes = whole_bytes(seen, std::min(left(pass), window));
    if (!is_well_formed(seen, bytes))
        return false;
    if (seen.leads_of_three)
        return put_singles<true>(table, pass, seen, bytes);
    return has_words(seen) ? put_words(table, pass, seen, bytes)
                           : put_singles<false>(table, pass, seen, bytes);
}

verdict convert_utf8_to_singles(const code_table &table, byte_pass &whole) {
    return walk(whole, [&](byte_pass &pass) {
        return any(is_high(load_bytes(pass.from))) ? convert_window_to_singles(table, pass)
                                                   : (copy_run<ascii_run::whole>(pass), true);
    });
}

constexpr unsigned char escape = 0x1B;
constexpr std::string_view enter_kanji = "\x1B$B";
constexpr std::string_view leave_kanji = "\x1B(B";

bool take_escape(byte_pass &pass, std::string_view sequence) {
    const bool is_there = std::memcmp(pass.from, sequence.data(), sequence.size()) == 0;
    pass.from += is_there ? sequence.size() : 0;
    return is_there;
}

} // namespace

verdict convert_to_utf8(const code_table &table, byte_pass &pass) {
    if (!table.keeps_ascii)
        return convert_pairs_to_utf8<ascii_run::text>(table, pass);
    return table.single_byte ? convert_singles_to_utf8(table, pass)
                             : convert_pairs_to_utf8<ascii_run::whole>(table, pass);
}

verdict convert_from_utf8(const code_table &table, byte_pass &pass) {
    if (!table.keeps_ascii)
        return convert_utf8_to_pairs<ascii_run::text>(table, pass);
    return table.single_byte ? convert_utf8_to_singles(table, pass)
                             : convert_utf8_to_pairs<ascii_run::whole>(table, pass);
}

// Other sets, a run of kanji without characters or without its end, and two escape sequences side by side:
// ICU has rules for them.
verdict convert_jis_to_utf8(const code_table &table, byte_pass &whole) {
    bool in_kanji = false;
    const verdict answer = walk(whole, [&](byte_pass &pass) {
        if (!in_kanji) {
            if (!copy_run<ascii_run::text>(pass))
                return true;
            if (*pass.from != escape)
                return put_character(pass, table.singles[*pass.from++]);
            in_kanji = true;
            return take_escape(pass, enter_kanji) && *pass.from != escape;
        }
        const std::uint64_t leads =
            bits_of(load_window(pass.from), [](signed_bytes bytes) { return is_between(bytes, 0x21, 0x7E); });
        const std::size_t pairs = pairs_ahead(pass, leads);
        if (!convert_pairs(table, pass, pairs))
            return false;
        if (*pass.from == escape) {
            in_kanji = false;
            return take_escape(pass, leave_kanji) && *pass.from != escape;
        }
        return pairs != 0;
    });
    return in_kanji && answer == verdict::done ? verdict::undecided : answer;
}

// Between turns the set is that of the last character, so that no run of kanji falls apart.
verdict convert_utf8_to_jis(const code_table &table, byte_pass &whole) {
    bool in_kanji = false;
    const auto enter = [&](byte_pass &pass, bool kanji) {
        if (kanji != in_kanji)
            put_bytes(pass, kanji ? enter_kanji : leave_kanji);
        in_kanji = kanji;
    };
    return walk(whole, [&](byte_pass &pass) {
        const auto convert_one = [&] {
            const charset_code code = table.codes[take_code_point(pass)];
            enter(pass, is_pair(code));
            return put_code(pass, code);
        };
        const auto convert_run = [&](std::size_t run) {
            if (run < 3 || *pass.from < 0xE0)
                return convert_one();
            enter(pass, true);
            return convert_triples(table, pass, run / 3, convert_one);
        };
        const window_bytes seen = load_window(pass.from);
        bool found = true;
        if (any_of(seen, are_controls)) [[unlikely]]
            found = convert_one();
        else if (const std::uint64_t high = copy_run<ascii_run::text>(pass, seen, bits_of(seen, is_high)))
            found = convert_run(run_ahead(high));
        if (ended(pass) || belongs_to<ascii_run::text>(*pass.from))
            enter(pass, false);
        return found;
    });
}

verdict copy_ascii(const ascii_identity &kept, byte_pass &whole) {
    if (kept.all())
        return walk(whole, [](byte_pass &pass) { return copy_run<ascii_run::whole>(pass) == 0; });
    return walk(whole, [&](byte_pass &pass) {
        if (!copy_run<ascii_run::text>(pass))
            return true;
        const unsigned char byte = *pass.from++;
        *pass.to++ = byte;
        return byte < kept.size() && kept[byte];
    });
}

} // namespace zel
