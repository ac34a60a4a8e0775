// Japanese text. The two encoders share the change between single bytes and double-byte runs, the two
// decoders the reading of modes; each of the four then only says how a character is written, and how a lane
// of pairs.
//
// Invariant: what decides how the next byte is read lives on the stack of one call.

#include "conv_ja.h"

#include "conv.h"
#include "conv_runs.h"
#include "zel.h"
#include "zel/base/escape_sequences.h"
#include "zel/base/frame.h"

// clang-format off
const unsigned char KanaTbl[63][3] = {
    {0xA1, 0x21, 0x23}, {0xA2, 0x21, 0x56}, {0xA3, 0x21, 0x57}, {0xA4, 0x21, 0x22}, {0xA5, 0x21, 0x26},
    {0xA6, 0x25, 0x72}, {0xA7, 0x25, 0x21}, {0xA8, 0x25, 0x23}, {0xA9, 0x25, 0x25}, {0xAA, 0x25, 0x27},
    {0xAB, 0x25, 0x29}, {0xAC, 0x25, 0x63}, {0xAD, 0x25, 0x65}, {0xAE, 0x25, 0x67}, {0xAF, 0x25, 0x43},
    {0xB0, 0x21, 0x3C}, {0xB1, 0x25, 0x22}, {0xB2, 0x25, 0x24}, {0xB3, 0x25, 0x26}, {0xB4, 0x25, 0x28},
    {0xB5, 0x25, 0x2A}, {0xB6, 0x25, 0x2B}, {0xB7, 0x25, 0x2D}, {0xB8, 0x25, 0x2F}, {0xB9, 0x25, 0x31},
    {0xBA, 0x25, 0x33}, {0xBB, 0x25, 0x35}, {0xBC, 0x25, 0x37}, {0xBD, 0x25, 0x39}, {0xBE, 0x25, 0x3B},
    {0xBF, 0x25, 0x3D}, {0xC0, 0x25, 0x3F}, {0xC1, 0x25, 0x41}, {0xC2, 0x25, 0x44}, {0xC3, 0x25, 0x46},
    {0xC4, 0x25, 0x48}, {0xC5, 0x25, 0x4A}, {0xC6, 0x25, 0x4B}, {0xC7, 0x25, 0x4C}, {0xC8, 0x25, 0x4D},
    {0xC9, 0x25, 0x4E}, {0xCA, 0x25, 0x4F}, {0xCB, 0x25, 0x52}, {0xCC, 0x25, 0x55}, {0xCD, 0x25, 0x58},
    {0xCE, 0x25, 0x5B}, {0xCF, 0x25, 0x5E}, {0xD0, 0x25, 0x5F}, {0xD1, 0x25, 0x60}, {0xD2, 0x25, 0x61},
    {0xD3, 0x25, 0x62}, {0xD4, 0x25, 0x64}, {0xD5, 0x25, 0x66}, {0xD6, 0x25, 0x68}, {0xD7, 0x25, 0x69},
    {0xD8, 0x25, 0x6A}, {0xD9, 0x25, 0x6B}, {0xDA, 0x25, 0x6C}, {0xDB, 0x25, 0x6D}, {0xDC, 0x25, 0x6F},
    {0xDD, 0x25, 0x73}, {0xDE, 0x21, 0x2B}, {0xDF, 0x21, 0x2C},
};
// clang-format on

namespace zel {
namespace {

constexpr unsigned char ESC = 0x1B;
constexpr unsigned char SO = 0x0E;
constexpr unsigned char SI = 0x0F;
constexpr unsigned char DEL = 0x7F;
constexpr unsigned char eucjp_kana_prefix = 0x8E;

using pair_words = std::int16_t __attribute__((vector_size(lane_step)));
using unsigned_words = std::uint16_t __attribute__((vector_size(lane_step)));

template <class Number>
struct number_pair {
    Number first;
    Number second;
};

// The pairs of a lane as numbers, to do arithmetic on.
number_pair<pair_words> pairs_of(signed_bytes bytes) {
    const auto low = reinterpret_cast<pair_words>(bytes) & 0xFF;
    const auto high = reinterpret_cast<pair_words>(reinterpret_cast<unsigned_words>(bytes) >> 8);
    return is_little_endian ? number_pair<pair_words>{low, high} : number_pair<pair_words>{high, low};
}

void store_pairs(unsigned char *to, const number_pair<pair_words> &pairs) {
    const pair_words low = (is_little_endian ? pairs.first : pairs.second) & 0xFF;
    const pair_words high = is_little_endian ? pairs.second : pairs.first;
    store_bytes(to, reinterpret_cast<signed_bytes>(low | high << 8));
}

// A value for one character, or for eight of them at once, where a condition holds, and 0 elsewhere.
int where(bool holds, int value) {
    return holds ? value : 0;
}

pair_words where(pair_words holds, int value) {
    return holds & static_cast<std::int16_t>(value);
}

// A lead of Shift_JIS stands for two rows of JIS X 0208, an odd one and the even one behind it.
template <class Number>
number_pair<Number> jis_of_sjis(Number lead, Number trail) {
    const Number odd_row = 2 * (lead - 0x71 - where(lead > 0x9F, 0x40)) + 1;
    const Number place = trail - where(trail > 0x7F, 1); // 0x7F itself is no trail
    return {odd_row + where(place >= 0x9E, 1), place - 0x1F - where(place >= 0x9E, 0x5E)};
}

template <class Number>
number_pair<Number> sjis_of_jis(Number row, Number cell) {
    const Number lead = (row + 2 * 0x81 - 0x21) >> 1;
    const Number trail = cell + 0x7D - (row & 1) * 0x5E;
    return {lead + where(lead > 0x9F, 0x40), trail + where(trail >= 0x7F, 1)};
}

bool put_numbers(output &to, number_pair<int> pair) {
    return put_pair(to, static_cast<unsigned char>(pair.first), static_cast<unsigned char>(pair.second));
}

constexpr unsigned char first_kana = 0xA1;
constexpr unsigned char last_kana = 0xDF;

bool is_kana(unsigned char byte) {
    return byte >= first_kana && byte <= last_kana;
}

const unsigned char *full_width(unsigned char kana) {
    return &KanaTbl[kana - first_kana][1];
}

bool is_sjis_lead(unsigned char byte) {
    return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
}

struct eucjp_to_jis {
    static constexpr bool needs_trail = true;

    static signed_bytes are_leads(signed_bytes bytes) {
        return is_high(bytes) & ~is_byte(bytes, eucjp_kana_prefix);
    }
    static bool is_regular(unsigned char byte) { return byte != eucjp_kana_prefix; }

    static void change_pairs(unsigned char *to, const unsigned char *from) {
        store_bytes(to, load_bytes(from) & static_cast<signed char>(0x7F));
    }

    static bool put_kanji(input &from, output &to) {
        const unsigned char byte = take(from);
        if (byte != eucjp_kana_prefix)
            return put(to, without_high_bit(byte)) && (ended(from) || put(to, without_high_bit(take(from))));
        const unsigned char kana = take(from);
        return !is_kana(kana) || (put(to, full_width(kana)[0]) && put(to, full_width(kana)[1]));
    }

    static bool is_kanji(unsigned char byte) { return byte >= 0x80; }
};

struct sjis_to_jis {
    static constexpr bool needs_trail = false;

    static signed_bytes are_leads(signed_bytes bytes) {
        return is_between(bytes, 0x81, 0x9F) | is_between(bytes, 0xE0, 0xFC);
    }
    static bool is_regular(unsigned char byte) { return byte < 0x80 || is_sjis_lead(byte); }

    static void change_pairs(unsigned char *to, const unsigned char *from) {
        const auto [leads, trails] = pairs_of(load_bytes(from));
        store_pairs(to, jis_of_sjis(leads, trails));
    }

    static bool put_kanji(input &from, output &to) {
        const unsigned char byte = take(from);
        if (is_sjis_lead(byte))
            return put_numbers(to, jis_of_sjis<int>(byte, take(from)));
        return put_pair(to, full_width(byte)[0], full_width(byte)[1]);
    }

    static bool is_kanji(unsigned char byte) { return is_sjis_lead(byte) || is_kana(byte); }
};

// Text on its way to ISO-2022-JP, which has a sequence at each change between ASCII and kanji.
template <class Charset>
struct text_to_jis {
    bool kanji = false;

    static constexpr bool needs_trail = Charset::needs_trail;

    static signed_bytes ends_singles(signed_bytes bytes) { return is_high(bytes); }
    static signed_bytes ends_pairs(signed_bytes bytes) { return ~Charset::are_leads(bytes); }
    static bool takes_step(unsigned char byte) { return Charset::is_regular(byte); }

    void change_set(bool to_kanji, byte_pass &pass) {
        if (kanji == to_kanji)
            return;
        kanji = to_kanji;
        std::memcpy(pass.to, (to_kanji ? enter_kanji : leave_kanji).data(), longest_escape);
        pass.to += longest_escape;
    }

    void step(bit_per_byte singles, bit_per_byte pairs, byte_pass &pass) {
        const std::size_t start = length_of_singles(singles);
        if (start)
            change_set(false, pass);
        copy_singles(pass, start);
        const std::size_t length = length_of_pairs(pairs, start);
        if (length) {
            change_set(true, pass);
            copy_pairs(pass, length, Charset::change_pairs);
        }
    }

    bool put_set(bool to_kanji, output &to) {
        if (kanji == to_kanji)
            return true;
        kanji = to_kanji;
        return put(to, to_kanji ? enter_kanji : leave_kanji);
    }

    bool take_unit(input &from, output &to) {
        const bool is_kanji = Charset::is_kanji(peek(from));
        if (!put_set(is_kanji, to))
            return false;
        return is_kanji ? Charset::put_kanji(from, to) : put(to, take(from));
    }
};

template <class Charset>
void convert_to_jis(input from, output &to) {
    text_to_jis<Charset> text;
    if (convert_by_steps(text, from, to))
        text.put_set(false, to);
}

enum class mode { ASCII, KANJI, KANA };

struct to_eucjp {
    static constexpr auto change_pairs = copy_with_high_bits;

    static bool put_kanji(output &to, unsigned char first, unsigned char second) {
        return put_high_pair(to, first, second);
    }
    static bool put_kana(output &to, unsigned char byte) {
        return put_high_pair(to, eucjp_kana_prefix, byte);
    }
};

struct to_sjis {
    static void change_pairs(unsigned char *to, const unsigned char *from) {
        const auto [rows, cells] = pairs_of(load_bytes(from) & static_cast<signed char>(0x7F));
        store_pairs(to, sjis_of_jis(rows, cells));
    }

    static bool put_kanji(output &to, unsigned char first, unsigned char second) {
        return put_numbers(to, sjis_of_jis<int>(without_high_bit(first), without_high_bit(second)));
    }
    static bool put_kana(output &to, unsigned char byte) { return put(to, with_high_bit(byte)); }
};

// ISO-2022-JP on its way to another charset.
template <class Charset>
struct text_from_jis {
    mode current = mode::ASCII;
    mode saved = mode::ASCII;
    bool pass_8bit = passes_8bit();

    static constexpr bool needs_trail = false;
    static constexpr std::size_t opening = 3;
    static constexpr std::size_t closing = 3;
    static constexpr auto change_pairs = Charset::change_pairs;

    static signed_bytes ends_singles(signed_bytes bytes) {
        return is_high(bytes) | is_between(bytes, SO, ESC); // the controls between them are rare
    }
    static signed_bytes ends_pairs(signed_bytes bytes) {
        return (bytes < ' ') | is_byte(bytes, DEL); // high bytes are negative
    }
    static bool opens_pairs(const unsigned char *at) {
        return at[0] == ESC && at[1] == '$' && (at[2] == 'B' || at[2] == '@');
    }
    static bool closes_pairs(const unsigned char *at) {
        return at[0] == ESC && at[1] == '(' && (at[2] == 'B' || at[2] == 'J');
    }
    bool takes_step(unsigned char byte) const {
        return current != mode::KANA && (byte < 0x80 || current == mode::KANJI);
    }

    void step(bit_per_byte singles, bit_per_byte pairs, byte_pass &pass) {
        const bool kanji = current == mode::KANJI;
        current = step_through_shifts<text_from_jis>(singles, pairs, pass, kanji) ? mode::KANJI : mode::ASCII;
    }

    bool take_escape(input &from) {
        const unsigned char bytes[] = {peek(from), peek(from, 1), peek(from, 2)};
        if (opens_pairs(bytes))
            current = mode::KANJI;
        else if (closes_pairs(bytes))
            current = mode::ASCII;
        else if (bytes[0] == ESC && bytes[1] == '(' && bytes[2] == 'I')
            current = mode::KANA;
        else
            return false;
        from.at += sizeof bytes;
        return true;
    }

    void take_shift(input &from) {
        if (take(from) == SO) {
            saved = current;
            current = mode::KANA;
        } else {
            current = saved;
        }
    }

    // Lines stand alone, so a control ends a run that lost its closing escape sequence.
    void end_run() {
        if (current == mode::KANA)
            saved = mode::ASCII;
        current = mode::ASCII;
    }

    // True if what stands next only told how to read on.
    bool take_mode(input &from) {
        const unsigned char byte = peek(from);
        if (byte == SO || byte == SI) {
            take_shift(from);
            return true;
        }
        if (take_escape(from))
            return true;
        if (byte < ' ' || byte == DEL)
            end_run();
        return false;
    }

    bool put_character(input &from, output &to) const {
        const unsigned char byte = take(from);
        switch (current) {
        case mode::KANJI:
            return Charset::put_kanji(to, byte, take(from));
        case mode::KANA:
            return Charset::put_kana(to, byte);
        case mode::ASCII:
            break;
        }
        return put(to, as_7bit(byte, pass_8bit));
    }

    bool take_unit(input &from, output &to) { return take_mode(from) || put_character(from, to); }
};

template <class Charset>
void convert_from_jis(input from, output &to) {
    text_from_jis<Charset> text;
    convert_by_steps(text, from, to);
}

} // namespace

void convert_eucjp_to_jis(input from, output &to) {
    convert_to_jis<eucjp_to_jis>(from, to);
}

void convert_sjis_to_jis(input from, output &to) {
    convert_to_jis<sjis_to_jis>(from, to);
}

void convert_jis_to_eucjp(input from, output &to) {
    convert_from_jis<to_eucjp>(from, to);
}

void convert_jis_to_sjis(input from, output &to) {
    convert_from_jis<to_sjis>(from, to);
}

} // namespace zel

int32_t is_hankakukana(unsigned char byte) {
    return zel::is_kana(byte);
}

int32_t eucjp2jis(const char *from_buf, int32_t from_len, char *to_buf, int32_t to_size) {
    return zel::convert_for_caller(zel::convert_eucjp_to_jis, from_buf, from_len, to_buf, to_size);
}

int32_t sjis2jis(const char *from_buf, int32_t from_len, char *to_buf, int32_t to_size) {
    return zel::convert_for_caller(zel::convert_sjis_to_jis, from_buf, from_len, to_buf, to_size);
}

int32_t jis2eucjp(const char *from_buf, int32_t from_len, char *to_buf, int32_t to_size) {
    return zel::convert_for_caller(zel::convert_jis_to_eucjp, from_buf, from_len, to_buf, to_size);
}

int32_t jis2sjis(const char *from_buf, int32_t from_len, char *to_buf, int32_t to_size) {
    return zel::convert_for_caller(zel::convert_jis_to_sjis, from_buf, from_len, to_buf, to_size);
}
