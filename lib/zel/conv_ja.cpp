// Japanese text byte by byte. The two encoders share the change between single bytes and double-byte runs,
// the two decoders the reading of modes; each of the four then only says how one character is written.
//
// Invariant: what decides how the next byte is read lives on the stack of one call.

#include "conv_ja.h"

#include "conv.h"
#include "zel.h"
#include "zel/base/frame.h"

#include <iterator>

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

struct jis_output {
    output &to;
    bool kanji = false;
};

bool enter_kanji(jis_output &jis) {
    if (jis.kanji)
        return true;
    jis.kanji = true;
    return put(jis.to, "\x1B$B");
}

bool leave_kanji(jis_output &jis) {
    if (!jis.kanji)
        return true;
    jis.kanji = false;
    return put(jis.to, "\x1B(B");
}

const unsigned char *full_width(unsigned char kana) {
    return &KanaTbl[kana - KanaTbl[0][0]][1];
}

bool put_eucjp_character(input &from, jis_output &jis) {
    const unsigned char byte = take(from);
    if (byte < 0x80)
        return leave_kanji(jis) && put(jis.to, byte);
    if (!enter_kanji(jis))
        return false;
    if (byte == eucjp_kana_prefix) {
        const unsigned char kana = take(from);
        return !is_hankakukana(kana) ||
               (put(jis.to, full_width(kana)[0]) && put(jis.to, full_width(kana)[1]));
    }
    return put(jis.to, without_high_bit(byte)) && (ended(from) || put(jis.to, without_high_bit(take(from))));
}

bool is_sjis_lead(unsigned char byte) {
    return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
}

// A lead of Shift_JIS stands for two rows of JIS X 0208, an odd one and the even one behind it.
bool put_sjis_pair_as_jis(output &to, unsigned char lead, unsigned char trail) {
    const int odd_row = 2 * (lead - (lead > 0x9F ? 0xB1 : 0x71)) + 1;
    const int place = trail > 0x7F ? trail - 1 : trail; // 0x7F itself is no trail
    const bool even = place >= 0x9E;
    return put_pair(to, static_cast<unsigned char>(even ? odd_row + 1 : odd_row),
                    static_cast<unsigned char>(even ? place - 0x7D : place - 0x1F));
}

bool put_sjis_character(input &from, jis_output &jis) {
    const unsigned char byte = take(from);
    if (is_sjis_lead(byte))
        return enter_kanji(jis) && put_sjis_pair_as_jis(jis.to, byte, take(from));
    if (is_hankakukana(byte))
        return enter_kanji(jis) && put_pair(jis.to, full_width(byte)[0], full_width(byte)[1]);
    return leave_kanji(jis) && put(jis.to, byte);
}

template <bool (&put_character)(input &, jis_output &)>
void encode_jis(input from, output &to) {
    jis_output jis = {to};
    while (!ended(from))
        if (!put_character(from, jis))
            return;
    leave_kanji(jis);
}

enum class mode { ASCII, KANJI, KANA };

struct jis_input {
    input from;
    mode current = mode::ASCII;
    mode saved = mode::ASCII;
};

bool take_escape(jis_input &jis) {
    const unsigned char type = peek(jis.from, 1);
    const unsigned char set = peek(jis.from, 2);
    if (type == '$' && (set == 'B' || set == '@'))
        jis.current = mode::KANJI;
    else if (type == '(' && set == 'I')
        jis.current = mode::KANA;
    else if (type == '(' && (set == 'B' || set == 'J'))
        jis.current = mode::ASCII;
    else
        return false;
    jis.from.at += 3;
    return true;
}

void take_shift(jis_input &jis) {
    if (take(jis.from) == SO) {
        jis.saved = jis.current;
        jis.current = mode::KANA;
    } else {
        jis.current = jis.saved;
    }
}

// Lines stand alone, so a control ends a run that lost its closing escape sequence.
void end_run(jis_input &jis) {
    if (jis.current == mode::KANA)
        jis.saved = mode::ASCII;
    jis.current = mode::ASCII;
}

// True if what stands next only told how to read on.
bool take_mode(jis_input &jis) {
    const unsigned char byte = peek(jis.from);
    if (byte == SO || byte == SI) {
        take_shift(jis);
        return true;
    }
    if (byte == ESC && take_escape(jis))
        return true;
    if (byte < ' ' || byte == DEL)
        end_run(jis);
    return false;
}

struct eucjp {
    static bool put_kanji(output &to, unsigned char first, unsigned char second) {
        return put_high_pair(to, first, second);
    }
    static bool put_kana(output &to, unsigned char byte) {
        return put_high_pair(to, eucjp_kana_prefix, byte);
    }
};

struct sjis {
    static bool put_kanji(output &to, unsigned char first, unsigned char second) {
        const int row = without_high_bit(first);
        const int cell = without_high_bit(second);
        const int lead = ((row - 0x21) >> 1) + 0x81;
        const int trail = cell + (row % 2 ? 0x1F : 0x7D);
        return put_pair(to, static_cast<unsigned char>(lead > 0x9F ? lead + 0x40 : lead),
                        static_cast<unsigned char>(trail >= DEL ? trail + 1 : trail));
    }
    static bool put_kana(output &to, unsigned char byte) { return put(to, with_high_bit(byte)); }
};

template <class Encoding>
bool put_jis_character(jis_input &jis, output &to, bool pass_8bit) {
    const unsigned char byte = take(jis.from);
    switch (jis.current) {
    case mode::KANJI:
        return Encoding::put_kanji(to, byte, take(jis.from));
    case mode::KANA:
        return Encoding::put_kana(to, byte);
    case mode::ASCII:
        break;
    }
    return put(to, as_7bit(byte, pass_8bit));
}

template <class Encoding>
void decode_jis(input from, output &to) {
    jis_input jis = {from};
    const bool pass_8bit = passes_8bit();
    while (!ended(jis.from))
        if (!take_mode(jis) && !put_jis_character<Encoding>(jis, to, pass_8bit))
            return;
}

} // namespace

void convert_eucjp_to_jis(input from, output &to) {
    encode_jis<put_eucjp_character>(from, to);
}

void convert_sjis_to_jis(input from, output &to) {
    encode_jis<put_sjis_character>(from, to);
}

void convert_jis_to_eucjp(input from, output &to) {
    decode_jis<eucjp>(from, to);
}

void convert_jis_to_sjis(input from, output &to) {
    decode_jis<sjis>(from, to);
}

} // namespace zel

int32_t is_hankakukana(unsigned char byte) {
    return byte >= std::begin(KanaTbl)[0][0] && byte <= std::end(KanaTbl)[-1][0];
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
