#include "zel/conversion/table_conversion.h"

#include <algorithm>
#include <string_view>

namespace zel {
namespace {

bool ended(const byte_pass &pass) {
    return pass.from == pass.from_end;
}

// Whether each write asks for room, or the whole text has been found to fit whatever it converts to.
enum class bounds { tested, ample };

constexpr std::size_t slack = 4; // what one store may write

template <bounds Bounds>
bool has_room(const byte_pass &pass, std::size_t bytes) {
    return Bounds == bounds::ample || room(pass) >= bytes;
}

verdict put_bytes(byte_pass &pass, const void *bytes, std::size_t length) {
    if (room(pass) < length)
        return verdict::full;
    std::memcpy(pass.to, bytes, length);
    pass.to += length;
    return verdict::done;
}

// Four bytes are stored at once where there is room for them, and as many kept as the character has.
template <bounds Bounds>
verdict put_character(byte_pass &pass, const utf8_character &character) {
    if (character.length == 0)
        return verdict::undecided;
    if (!has_room<Bounds>(pass, slack))
        return put_bytes(pass, character.bytes.data(), character.length);
    std::memcpy(pass.to, &character, sizeof character);
    pass.to += character.length;
    return verdict::done;
}

template <bounds Bounds>
verdict put_code(byte_pass &pass, charset_code code) {
    if (code == 0)
        return verdict::undecided;
    const std::size_t length = code > 0xFF ? 2 : 1;
    if (!has_room<Bounds>(pass, length))
        return verdict::full;
    pass.to[0] = static_cast<unsigned char>(code >> 8);
    pass.to[length - 1] = static_cast<unsigned char>(code);
    pass.to += length;
    return verdict::done;
}

template <bounds Bounds>
verdict convert_character(const code_table &table, byte_pass &pass) {
    const unsigned char byte = *pass.from;
    if (!table.leads[byte]) {
        ++pass.from;
        return put_character<Bounds>(pass, table.singles[byte]);
    }
    if (left(pass) < 2)
        return verdict::undecided;
    const unsigned char trail = pass.from[1];
    pass.from += 2;
    return put_character<Bounds>(pass, table.pairs[static_cast<std::size_t>(byte & 0x7F) << 8 | trail]);
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
        if (const verdict kanji = convert_character<bounds::tested>(table, pass); kanji != verdict::done)
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
        if (switch_set(code > 0xFF, in_kanji, pass) == verdict::full ||
            put_code<bounds::tested>(pass, code) == verdict::full)
            return verdict::full;
    }
    return switch_set(false, in_kanji, pass);
}

// A charset without pairs, in text where most steps of ASCII would stop short: byte by byte without a branch,
// as many bytes a turn as a step of ASCII has.
verdict convert_singles(const code_table &table, byte_pass &pass) {
    while (left(pass) >= lane_step) {
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
    return convert_runs<ascii_run::whole>(pass,
                                          [&] { return convert_character<bounds::ample>(table, pass); });
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

// A byte becomes at most one character of three bytes, and no character of UTF-8 becomes longer.
verdict convert_to_utf8(const code_table &table, byte_pass &whole) {
    const bool ample = room(whole) / 3 >= left(whole) + slack;
    return on_copy(whole, [&](byte_pass &pass) {
        if (ample && table.single_byte && table.keeps_ascii)
            return convert_singles(table, pass);
        if (ample)
            return convert_any(table, pass, [&] { return convert_character<bounds::ample>(table, pass); });
        return convert_any(table, pass, [&] { return convert_character<bounds::tested>(table, pass); });
    });
}

verdict convert_from_utf8(const code_table &table, byte_pass &whole) {
    const bool ample = room(whole) >= left(whole) + slack;
    return on_copy(whole, [&](byte_pass &pass) {
        const auto put_next = [&] {
            return put_code<bounds::ample>(pass, table.codes[take_code_point(pass)]);
        };
        const auto test_next = [&] {
            return put_code<bounds::tested>(pass, table.codes[take_code_point(pass)]);
        };
        return ample ? convert_any(table, pass, put_next) : convert_any(table, pass, test_next);
    });
}

verdict convert_jis_to_utf8(const code_table &table, byte_pass &whole) {
    return on_copy(whole, [&](byte_pass &pass) {
        return convert_runs<ascii_run::printable>(pass, [&] {
            return stands_at_escape(pass) ? convert_kanji_run(table, pass)
                                          : put_character<bounds::tested>(pass, table.singles[*pass.from++]);
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
