#include "zel/base/escape_sequences.h"
#include "zel/conversion/table_conversion.h"
#include "zel/conversion/table_steps.h"

#include <string_view>

namespace zel {
namespace {

constexpr unsigned char escape = 0x1B;

bool take_escape(byte_pass &pass, std::string_view sequence) {
    const bool is_there = std::memcmp(pass.from, sequence.data(), sequence.size()) == 0;
    pass.from += is_there ? sequence.size() : 0;
    return is_there;
}

void put_bytes(byte_pass &pass, std::string_view bytes) {
    pass.to += bytes.copy(reinterpret_cast<char *>(pass.to), bytes.size());
}

bool convert_ascii(const code_table &table, byte_pass &pass) {
    if (!belongs_to<ascii_run::text>(*pass.from))
        return put_character(pass, table.singles[*pass.from++]);
    copy_run<ascii_run::text>(pass);
    return true;
}

// As many as a step shows. A full step is a case of its own, so that the next need not wait for its count.
bool convert_kanji(const code_table &table, byte_pass &pass) {
    const std::size_t pairs = pairs_ahead(pass, bits_of(is_between(load_bytes(pass.from), 0x21, 0x7E)));
    if (pairs == lane_step / 2)
        return convert_pairs(table, pass, lane_step / 2);
    return pairs != 0 && convert_pairs(table, pass, pairs);
}

} // namespace

// Other sets, a run of kanji without characters or without its end, and two escape sequences side by side:
// ICU has rules for them.
verdict convert_jis_to_utf8(const code_table &table, byte_pass &whole) {
    bool in_kanji = false;
    const verdict answer = walk(whole, [&](byte_pass &pass) {
        if (!in_kanji && *pass.from != escape)
            return convert_ascii(table, pass);
        if (!in_kanji && (!take_escape(pass, enter_kanji) || *pass.from == escape))
            return false;
        in_kanji = true;
        if (!convert_kanji(table, pass))
            return false;
        if (*pass.from != escape)
            return true;
        in_kanji = false;
        return take_escape(pass, leave_kanji) && *pass.from != escape;
    });
    return in_kanji && answer == verdict::done ? verdict::undecided : answer;
}

// A run of kanji goes on from turn to turn, and ends in front of ASCII or the end of the text: so a turn that
// begins with ASCII never begins within one.
verdict convert_utf8_to_jis(const code_table &table, byte_pass &whole) {
    bool in_kanji = false;
    const auto enter = [&](byte_pass &pass, bool kanji) {
        if (kanji != in_kanji)
            put_bytes(pass, kanji ? enter_kanji : leave_kanji);
        in_kanji = kanji;
    };
    const auto convert_one = [&](byte_pass &pass) {
        const charset_code code = table.codes[take_code_point(pass)];
        enter(pass, is_pair(code));
        return put_code(pass, code);
    };
    const auto convert_run = [&](byte_pass &pass, std::size_t run) {
        if (run < 3 || *pass.from < 0xE0)
            return convert_one(pass);
        enter(pass, true);
        return convert_triples(table, pass, run / 3, [&] { return convert_one(pass); });
    };
    return walk(whole, [&](byte_pass &pass) {
        const byte_block block = load_block(pass.from);
        bool found = true;
        if (has_any(block, are_controls)) [[unlikely]]
            found = convert_one(pass);
        else if (const bit_per_byte high = copy_run<ascii_run::text>(pass, block, ask(block, is_high)))
            found = convert_run(pass, run_ahead(high));
        if (ended(pass) || belongs_to<ascii_run::text>(*pass.from))
            enter(pass, false);
        return found;
    });
}

} // namespace zel
