#include "zel/conversion/table_conversion.h"

#include <algorithm>
#include <string_view>

namespace zel {
namespace {

bool ended(const byte_pass &pass) {
    return pass.from == pass.from_end;
}

verdict put_bytes(byte_pass &pass, const void *bytes, std::size_t length) {
    if (room(pass) < length)
        return verdict::full;
    std::memcpy(pass.to, bytes, length);
    pass.to += length;
    return verdict::done;
}

// Four bytes are stored at once where there is room for them, and as many kept as the character has.
verdict put_character(byte_pass &pass, const utf8_character &character) {
    if (character.length == 0)
        return verdict::undecided;
    if (room(pass) < sizeof character)
        return put_bytes(pass, character.bytes.data(), character.length);
    std::memcpy(pass.to, &character, sizeof character);
    pass.to += character.length;
    return verdict::done;
}

verdict put_code(byte_pass &pass, charset_code code) {
    if (code == 0)
        return verdict::undecided;
    const std::size_t length = code > 0xFF ? 2 : 1;
    if (room(pass) < length)
        return verdict::full;
    pass.to[0] = static_cast<unsigned char>(code >> 8);
    pass.to[length - 1] = static_cast<unsigned char>(code);
    pass.to += length;
    return verdict::done;
}

verdict convert_character(const code_table &table, byte_pass &pass) {
    const unsigned char byte = *pass.from;
    if (!table.leads[byte]) {
        ++pass.from;
        return put_character(pass, table.singles[byte]);
    }
    if (left(pass) < 2)
        return verdict::undecided;
    const unsigned char trail = pass.from[1];
    pass.from += 2;
    return put_character(pass, table.pairs[static_cast<std::size_t>(byte & 0x7F) << 8 | trail]);
}

bool is_continuation(unsigned char byte) {
    return (byte & 0xC0) == 0x80;
}

// Takes a character of the Basic Multilingual Plane; 0 where there is none, or a broken or overlong one.
unsigned take_code_point(byte_pass &pass) {
    const unsigned char *from = pass.from;
    if (from[0] < 0x80) {
        pass.from += 1;
        return from[0];
    }
    if ((from[0] & 0xF0) == 0xE0) {
        if (left(pass) < 3 || !is_continuation(from[1]) || !is_continuation(from[2]))
            return 0;
        pass.from += 3;
        const unsigned code_point = (from[0] & 0x0FU) << 12 | (from[1] & 0x3FU) << 6 | (from[2] & 0x3FU);
        return code_point < 0x800 ? 0 : code_point;
    }
    if (from[0] < 0xC2 || from[0] >= 0xE0 || left(pass) < 2 || !is_continuation(from[1]))
        return 0;
    pass.from += 2;
    return (from[0] & 0x1FU) << 6 | (from[1] & 0x3FU);
}

bool is_at_printable_or_end(const byte_pass &pass) {
    return ended(pass) || belongs_to<ascii_run::printable>(*pass.from);
}

// The three walks below are inlined by force: a cursor whose address is passed on is no register any more.

// Characters of dense text, pair behind pair, as far as the table decides them. No lead byte, no pairs: what
// begins with another byte is undecided here.
[[gnu::always_inline]] inline void convert_pairs(const code_table &table, byte_pass &pass) {
    while (left(pass) >= 2 && pass.from[0] >= first_lead_byte && room(pass) >= sizeof(utf8_character)) {
        const utf8_character &character =
            table.pairs[static_cast<std::size_t>(pass.from[0] & 0x7F) << 8 | pass.from[1]];
        if (character.length == 0)
            return;
        std::memcpy(pass.to, &character, sizeof character);
        pass.to += character.length;
        pass.from += 2;
    }
}

// The way back: three bytes of UTF-8 behind three, as far as they become pairs.
[[gnu::always_inline]] inline void convert_to_pairs(const code_table &table, byte_pass &pass) {
    while (left(pass) >= 3 && room(pass) >= 2) {
        const unsigned lead = pass.from[0], second = pass.from[1], third = pass.from[2];
        const unsigned code_point = (lead & 0x0F) << 12 | (second & 0x3F) << 6 | (third & 0x3F);
        const charset_code code = table.codes[code_point];
        const bool is_whole = (lead & 0xF0) == 0xE0 && (second & 0xC0) == 0x80 && (third & 0xC0) == 0x80;
        if (!is_whole || code_point < 0x800 || code <= 0xFF)
            return;
        pass.to[0] = static_cast<unsigned char>(code >> 8);
        pass.to[1] = static_cast<unsigned char>(code);
        pass.to += 2;
        pass.from += 3;
    }
}

// Two bytes of UTF-8 behind two, as far as they become single ones.
[[gnu::always_inline]] inline void convert_to_singles(const code_table &table, byte_pass &pass) {
    while (left(pass) >= 2 && room(pass) >= 1) {
        const unsigned lead = pass.from[0], second = pass.from[1];
        const charset_code code = table.codes[(lead & 0x1F) << 6 | (second & 0x3F)];
        const bool is_whole = lead >= 0xC2 && lead < 0xE0 && (second & 0xC0) == 0x80;
        if (!is_whole || code == 0 || code > 0xFF)
            return;
        *pass.to++ = static_cast<unsigned char>(code);
        pass.from += 2;
    }
}

// Whether another character follows, maybe behind a lone byte of ASCII: the blank between two words.
template <ascii_run Run>
bool goes_on_after_blank(byte_pass &pass) {
    if (!ended(pass) && !belongs_to<Run>(*pass.from))
        return true;
    if (left(pass) < 2 || belongs_to<Run>(pass.from[1]) || !room(pass))
        return false;
    *pass.to++ = *pass.from++;
    return true;
}

// Runs of ASCII that stay as they are, and between them characters one by one.
template <ascii_run Run, class Convert>
verdict convert_runs(byte_pass &pass, Convert convert) {
    while (true) {
        copy_run<Run>(pass);
        if (ended(pass))
            return verdict::done;
        if (belongs_to<Run>(*pass.from))
            return verdict::full;
        do {
            const verdict character = convert();
            if (character != verdict::done)
                return character;
        } while (goes_on_after_blank<Run>(pass));
    }
}

template <class Convert>
verdict convert_any(const code_table &table, byte_pass &pass, Convert convert) {
    return table.keeps_ascii ? convert_runs<ascii_run::whole>(pass, convert)
                             : convert_runs<ascii_run::printable>(pass, convert);
}

constexpr unsigned char escape = 0x1B;
constexpr std::string_view enter_kanji = "\x1B$B";
constexpr std::string_view leave_kanji = "\x1B(B";

bool take_escape(byte_pass &pass, std::string_view sequence) {
    if (left(pass) < sequence.size() || std::memcmp(pass.from, sequence.data(), sequence.size()) != 0)
        return false;
    pass.from += sequence.size();
    return true;
}

bool stands_at_escape(const byte_pass &pass) {
    return !ended(pass) && *pass.from == escape;
}

// Other sets, a run without characters or without its end, and two escape sequences side by side: ICU has
// rules for them.
verdict convert_kanji_run(const code_table &table, byte_pass &pass) {
    if (!take_escape(pass, enter_kanji) || stands_at_escape(pass))
        return verdict::undecided;
    while (!ended(pass) && !stands_at_escape(pass)) {
        if (!table.leads[*pass.from])
            return verdict::undecided;
        if (const verdict kanji = convert_character(table, pass); kanji != verdict::done)
            return kanji;
    }
    return take_escape(pass, leave_kanji) && !stands_at_escape(pass) ? verdict::done : verdict::undecided;
}

verdict switch_set(bool to_kanji, bool &in_kanji, byte_pass &pass) {
    if (to_kanji == in_kanji)
        return verdict::done;
    in_kanji = to_kanji;
    const std::string_view sequence = to_kanji ? enter_kanji : leave_kanji;
    return put_bytes(pass, sequence.data(), sequence.size());
}

verdict convert_run_to_jis(const code_table &table, byte_pass &pass) {
    bool in_kanji = false;
    while (!ended(pass) && !belongs_to<ascii_run::printable>(*pass.from)) {
        const charset_code code = table.codes[take_code_point(pass)];
        if (code == 0)
            return verdict::undecided;
        if (switch_set(code > 0xFF, in_kanji, pass) == verdict::full || put_code(pass, code) == verdict::full)
            return verdict::full;
    }
    return switch_set(false, in_kanji, pass);
}

// A charset without pairs, in text where most steps of ASCII would stop short: byte by byte without a branch,
// as many bytes a turn as a step of ASCII has.
verdict convert_singles(const code_table &table, byte_pass &pass) {
    while (left(pass) >= lane_step && room(pass) >= lane_step * sizeof(utf8_character)) {
        if (!any(is_high(load_bytes(pass.from)))) {
            copy_run<ascii_run::whole>(pass);
            continue;
        }
        unsigned shortest = 1;
        for (std::size_t i = 0; i < lane_step; ++i) {
            const utf8_character &character = table.singles[pass.from[i]];
            std::memcpy(pass.to, &character, sizeof character);
            pass.to += character.length;
            shortest = std::min<unsigned>(shortest, character.length);
        }
        if (shortest == 0)
            return verdict::undecided;
        pass.from += lane_step;
    }
    return convert_runs<ascii_run::whole>(pass, [&] { return convert_character(table, pass); });
}

// The walks work on cursors of their own: those of the caller might be what a byte is stored into, for all
// that the compiler knows.
template <class Walk>
verdict on_copy(byte_pass &pass, Walk walk) {
    byte_pass own = pass;
    const verdict answer = walk(own);
    pass = own;
    return answer;
}

} // namespace

verdict convert_to_utf8(const code_table &table, byte_pass &whole) {
    return on_copy(whole, [&](byte_pass &pass) {
        if (table.single_byte && table.keeps_ascii)
            return convert_singles(table, pass);
        return convert_any(table, pass, [&] {
            convert_pairs(table, pass);
            return is_at_printable_or_end(pass) ? verdict::done : convert_character(table, pass);
        });
    });
}

verdict convert_from_utf8(const code_table &table, byte_pass &whole) {
    return on_copy(whole, [&](byte_pass &pass) {
        const auto convert_next = [&] {
            return is_at_printable_or_end(pass) ? verdict::done
                                                : put_code(pass, table.codes[take_code_point(pass)]);
        };
        if (table.single_byte)
            return convert_any(table, pass, [&] { return convert_to_singles(table, pass), convert_next(); });
        return convert_any(table, pass, [&] { return convert_to_pairs(table, pass), convert_next(); });
    });
}

verdict convert_jis_to_utf8(const code_table &table, byte_pass &whole) {
    return on_copy(whole, [&](byte_pass &pass) {
        return convert_runs<ascii_run::printable>(pass, [&] {
            return stands_at_escape(pass) ? convert_kanji_run(table, pass)
                                          : put_character(pass, table.singles[*pass.from++]);
        });
    });
}

verdict convert_utf8_to_jis(const code_table &table, byte_pass &whole) {
    return on_copy(whole, [&](byte_pass &pass) {
        return convert_runs<ascii_run::printable>(pass, [&] { return convert_run_to_jis(table, pass); });
    });
}

verdict copy_ascii(const ascii_identity &kept, byte_pass &pass) {
    if (kept.all()) {
        copy_run<ascii_run::whole>(pass);
        return ended(pass) ? verdict::done : *pass.from < 0x80 ? verdict::full : verdict::undecided;
    }
    return convert_runs<ascii_run::printable>(pass, [&] {
        const unsigned char byte = *pass.from;
        if (byte >= kept.size() || !kept[byte])
            return verdict::undecided;
        ++pass.from;
        return put_bytes(pass, &byte, 1);
    });
}

} // namespace zel
