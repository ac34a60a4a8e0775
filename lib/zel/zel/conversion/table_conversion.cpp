#include "zel/conversion/table_conversion.h"

namespace zel {
namespace {

std::size_t left(const byte_pass &pass) {
    return static_cast<std::size_t>(pass.from_end - pass.from);
}

std::size_t room(const byte_pass &pass) {
    return static_cast<std::size_t>(pass.to_end - pass.to);
}

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
    const unsigned char bytes[] = {static_cast<unsigned char>(code >> 8), static_cast<unsigned char>(code)};
    return code > 0xFF ? put_bytes(pass, bytes, 2) : put_bytes(pass, bytes + 1, 1);
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
char32_t take_code_point(byte_pass &pass) {
    const unsigned char *from = pass.from;
    if (from[0] < 0x80) {
        pass.from += 1;
        return from[0];
    }
    if (from[0] >= 0xC2 && from[0] < 0xE0 && left(pass) >= 2 && is_continuation(from[1])) {
        pass.from += 2;
        return static_cast<char32_t>((from[0] & 0x1F) << 6 | (from[1] & 0x3F));
    }
    if ((from[0] & 0xF0) != 0xE0 || left(pass) < 3 || !is_continuation(from[1]) || !is_continuation(from[2]))
        return 0;
    pass.from += 3;
    const int code_point = (from[0] & 0x0F) << 12 | (from[1] & 0x3F) << 6 | (from[2] & 0x3F);
    return code_point < 0x800 ? 0 : static_cast<char32_t>(code_point);
}

// Runs of printable ASCII, and between them characters one by one.
template <class Convert>
verdict convert_runs(byte_pass &pass, Convert convert) {
    while (true) {
        copy_printable(pass);
        if (ended(pass))
            return verdict::done;
        if (is_printable_ascii(*pass.from))
            return verdict::full;
        do {
            const verdict character = convert();
            if (character != verdict::done)
                return character;
        } while (!ended(pass) && !is_printable_ascii(*pass.from));
    }
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
    while (!ended(pass) && !is_printable_ascii(*pass.from)) {
        const charset_code code = table.codes[take_code_point(pass)];
        if (code == 0)
            return verdict::undecided;
        if (switch_set(code > 0xFF, in_kanji, pass) == verdict::full || put_code(pass, code) == verdict::full)
            return verdict::full;
    }
    return switch_set(false, in_kanji, pass);
}

} // namespace

verdict convert_to_utf8(const code_table &table, byte_pass &pass) {
    return convert_runs(pass, [&] { return convert_character(table, pass); });
}

verdict convert_from_utf8(const code_table &table, byte_pass &pass) {
    return convert_runs(pass, [&] { return put_code(pass, table.codes[take_code_point(pass)]); });
}

verdict convert_jis_to_utf8(const code_table &table, byte_pass &pass) {
    return convert_runs(pass, [&] {
        return stands_at_escape(pass) ? convert_kanji_run(table, pass)
                                      : put_character(pass, table.singles[*pass.from++]);
    });
}

verdict convert_utf8_to_jis(const code_table &table, byte_pass &pass) {
    return convert_runs(pass, [&] { return convert_run_to_jis(table, pass); });
}

verdict copy_ascii(const ascii_identity &kept, byte_pass &pass) {
    return convert_runs(pass, [&] {
        const unsigned char byte = *pass.from;
        if (byte >= kept.size() || !kept[byte])
            return verdict::undecided;
        ++pass.from;
        return put_bytes(pass, &byte, 1);
    });
}

} // namespace zel
