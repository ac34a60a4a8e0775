// Japanese text between EUC-JP, Shift_JIS and ISO-2022-JP with the half-width kana forms that mailers add to
// it. The two encoders share the change between single bytes and runs of kanji, the two decoders the reading
// of modes; each of the four then only says how a character is written, and how a vector of them.
//
// Invariant: what decides how the next byte is read lives on the stack of one call.

#include "zel.h"
#include "zel/base/frame.h"
#include "zel/direct/converters.h"

#include <cstdint>

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

constexpr unsigned char DEL = 0x7F;
constexpr unsigned char eucjp_kana_prefix = 0x8E;

using numbers = std::int16_t __attribute__((vector_size(vector_size)));

template <class Number>
struct number_pair {
    Number first;
    Number second;
};

// A value for one character, or for eight of them at once, where a condition holds, and 0 elsewhere.
int where(bool holds, int value) {
    return holds ? value : 0;
}

numbers where(numbers holds, int value) {
    return holds & static_cast<std::int16_t>(value);
}

// A lead byte of Shift_JIS stands for two rows of JIS X 0208, an odd one and the even one behind it.
template <class Number>
number_pair<Number> jis_of_sjis(Number lead, Number trail) {
    const Number odd_row = 2 * (lead - 0x71 - where(lead > 0x9F, 0x40)) + 1;
    const Number place = trail - where(trail > 0x7F, 1); // 0x7F itself is no trail byte
    return {odd_row + where(place >= 0x9E, 1), place - 0x1F - where(place >= 0x9E, 0x5E)};
}

template <class Number>
number_pair<Number> sjis_of_jis(Number row, Number cell) {
    const Number lead = (row + 2 * 0x81 - 0x21) >> 1;
    const Number trail = cell + 0x7D - (row & 1) * 0x5E;
    return {lead + where(lead > 0x9F, 0x40), trail + where(trail >= 0x7F, 1)};
}

// Eight pairs of bytes at once, the first and the second bytes as numbers.
template <class Rule>
void change_by_rule(unsigned char *to, vector_bytes bytes, Rule rule) {
    const byte_pairs<numbers> pairs = split_pairs<numbers>(bytes);
    const number_pair<numbers> changed = rule(pairs.first, pairs.second);
    store_vector(to, join_pairs<numbers>({changed.first, changed.second}));
}

bool put_numbers(cursors &at, number_pair<int> pair) {
    return put(at, static_cast<unsigned char>(pair.first), static_cast<unsigned char>(pair.second));
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
    static vector_mask are_leads(vector_bytes bytes) {
        return are_high(bytes) & ~are_byte(bytes, eucjp_kana_prefix);
    }
    static bool is_lead(unsigned char byte) { return byte >= 0x80 && byte != eucjp_kana_prefix; }
    static bool is_kanji(unsigned char byte) { return byte >= 0x80; }

    static void change_vector(unsigned char *to, const unsigned char *from) {
        store_vector(to, load_vector(from) & 0x7F);
    }

    static bool put_kanji(unsigned char byte, cursors &at) {
        if (byte != eucjp_kana_prefix)
            return put(at, without_high_bit(byte)) && (ended(at) || put(at, without_high_bit(take(at))));
        const unsigned char kana = take(at);
        return !is_kana(kana) || (put(at, full_width(kana)[0]) && put(at, full_width(kana)[1]));
    }
};

struct sjis_to_jis {
    static vector_mask are_leads(vector_bytes bytes) {
        return are_between(bytes, 0x81, 0x9F) | are_between(bytes, 0xE0, 0xFC);
    }
    static bool is_lead(unsigned char byte) { return is_sjis_lead(byte); }
    static bool is_kanji(unsigned char byte) { return is_sjis_lead(byte) || is_kana(byte); }

    static void change_vector(unsigned char *to, const unsigned char *from) {
        change_by_rule(to, load_vector(from), jis_of_sjis<numbers>);
    }

    static bool put_kanji(unsigned char byte, cursors &at) {
        if (is_sjis_lead(byte))
            return put_numbers(at, jis_of_sjis<int>(byte, take(at)));
        return put(at, full_width(byte)[0], full_width(byte)[1]);
    }
};

// Text on its way to ISO-2022-JP, which has an escape sequence at each change between ASCII and kanji.
template <class Charset>
struct text_to_jis {
    jis_writer writer;

    static constexpr auto policy = when_full::keep_characters;
    static constexpr auto set = instructions::base;
    static constexpr std::size_t reads = runs_read;
    static constexpr std::size_t writes = step_writes;

    static vector_mask ends_singles(vector_bytes bytes) { return are_high(bytes); }
    static vector_mask ends_pairs(vector_bytes bytes) { return ~Charset::are_leads(bytes); }

    bool begin_run(bool of_kanji, cursors &at) { return writer.change_set(of_kanji, at); }
    static bool put_pairs(cursors &at, std::size_t bytes) {
        return change_pairs(at, bytes, Charset::change_vector);
    }

    bool in_singles() const { return !writer.in_kanji; }
    static bool begins_run(unsigned char byte) { return byte < 0x80 || Charset::is_lead(byte); }
    void take_runs(const chunk &of, std::size_t place, cursors &at) { take_led_runs(*this, of, place, at); }

    status block_step(cursors &at) { return take_chunk(*this, at); }

    // The byte is taken once: where the host converts in place, an escape sequence may overwrite it.
    status scalar_step(cursors &at) {
        const unsigned char byte = take(at);
        const bool is_kanji = Charset::is_kanji(byte);
        return done_if(begin_run(is_kanji, at) && (is_kanji ? Charset::put_kanji(byte, at) : put(at, byte)));
    }
};

template <class Charset>
void convert_to_jis(input from, output &to) {
    text_to_jis<Charset> text;
    if (convert_directly(text, from, to) == status::done && text.writer.in_kanji)
        put(to, leave_kanji);
}

enum class mode { ASCII, KANJI, KANA };

struct to_eucjp {
    static constexpr auto change_vector = copy_with_high_bits;

    static bool put_kanji(cursors &at, unsigned char first, unsigned char second) {
        return put_with_high_bits(at, first, second);
    }
    static bool put_kana(cursors &at, unsigned char byte) {
        return put_with_high_bits(at, eucjp_kana_prefix, byte);
    }
};

struct to_sjis {
    static void change_vector(unsigned char *to, const unsigned char *from) {
        change_by_rule(to, load_vector(from) & 0x7F, sjis_of_jis<numbers>);
    }

    static bool put_kanji(cursors &at, unsigned char first, unsigned char second) {
        return put_numbers(at, sjis_of_jis<int>(without_high_bit(first), without_high_bit(second)));
    }
    static bool put_kana(cursors &at, unsigned char byte) { return put(at, with_high_bit(byte)); }
};

// ISO-2022-JP on its way to another charset.
template <class Charset>
struct text_from_jis {
    mode current = mode::ASCII;
    mode saved = mode::ASCII;
    bool pass_8bit = passes_8bit();
    bool in_pairs = false; // for a step

    static constexpr auto policy = when_full::keep_characters;
    static constexpr auto set = instructions::base;
    static constexpr std::size_t reads = runs_read;
    static constexpr std::size_t writes = step_writes;
    static constexpr std::size_t opening = 3;
    static constexpr std::size_t closing = 3;

    static vector_mask ends_singles(vector_bytes bytes) {
        return are_high(bytes) | are_between(bytes, SO, ESC); // the controls between them are rare
    }
    static vector_mask ends_pairs(vector_bytes bytes) {
        return are_between(bytes, 0, ' ' - 1) | are_byte(bytes, DEL);
    }
    static bool put_pairs(cursors &at, std::size_t bytes) {
        return change_pairs(at, bytes, Charset::change_vector);
    }
    static bool opens_pairs(const unsigned char *at) {
        return at[0] == ESC && at[1] == '$' && (at[2] == 'B' || at[2] == '@');
    }
    static bool closes_pairs(const unsigned char *at) {
        return at[0] == ESC && at[1] == '(' && (at[2] == 'B' || at[2] == 'J');
    }

    bool in_singles() const { return current == mode::ASCII; }
    bool begins_run(unsigned char byte) const {
        return current == mode::KANJI ? byte >= ' ' && byte != DEL : current == mode::ASCII && byte < 0x80;
    }
    void take_runs(const chunk &of, std::size_t place, cursors &at) {
        in_pairs = current == mode::KANJI;
        take_shifted_runs(*this, of, place, at);
        current = in_pairs ? mode::KANJI : mode::ASCII;
    }

    status block_step(cursors &at) { return take_chunk(*this, at); }

    bool take_escape(unsigned char byte, cursors &at) {
        const unsigned char bytes[] = {byte, peek(at), peek(at, 1)};
        if (opens_pairs(bytes))
            current = mode::KANJI;
        else if (closes_pairs(bytes))
            current = mode::ASCII;
        else if (bytes[0] == ESC && bytes[1] == '(' && bytes[2] == 'I')
            current = mode::KANA;
        else
            return false;
        at.from += 2;
        return true;
    }

    void take_shift(unsigned char byte) {
        if (byte == SO) {
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

    // True if the byte only begins what tells how to read on.
    bool take_mode(unsigned char byte, cursors &at) {
        if (byte == SO || byte == SI) {
            take_shift(byte);
            return true;
        }
        if (take_escape(byte, at))
            return true;
        if (byte < ' ' || byte == DEL)
            end_run();
        return false;
    }

    bool put_character(unsigned char byte, cursors &at) const {
        switch (current) {
        case mode::KANJI:
            return Charset::put_kanji(at, byte, take(at));
        case mode::KANA:
            return Charset::put_kana(at, byte);
        case mode::ASCII:
            break;
        }
        return put(at, as_7bit(byte, pass_8bit));
    }

    status scalar_step(cursors &at) {
        const unsigned char byte = take(at);
        return done_if(take_mode(byte, at) || put_character(byte, at));
    }
};

template <class Charset>
void convert_from_jis(input from, output &to) {
    text_from_jis<Charset> text;
    convert_directly(text, from, to);
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
