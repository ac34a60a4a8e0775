// The characters of the tables one at a time, for the scalar steps of the kernels: the obvious code.
//
// Invariant: nothing is read behind the text, and a character is put whole or not at all.

#pragma once

#include "zel/fast_path/code_table.h"
#include "zel/simd/utf8.h"
#include "zel/transcode/transcode.h"

namespace zel {

// Takes a character of the Basic Multilingual Plane; 0 where there is none, or a broken or overlong one.
inline unsigned take_code_point(cursors &at) {
    const unsigned char first = peek(at), second = peek(at, 1);
    if (first < 0x80)
        return take(at);
    if (!is_continuation(second))
        return 0;
    if (first >= 0xC2 && first < 0xE0) {
        at.from += 2;
        return code_point_of_two(at.from - 2);
    }
    if ((first & 0xF0) != 0xE0 || !is_continuation(peek(at, 2)))
        return 0;
    at.from += 3;
    const unsigned code_point = code_point_of_three(at.from - 3);
    return code_point >= 0x800 ? code_point : 0;
}

inline bool put_code(cursors &at, charset_code code) {
    const auto first = static_cast<unsigned char>(code);
    return code < first_double_byte ? put(at, first) : put(at, first, static_cast<unsigned char>(code >> 8));
}

inline status put_bytes(cursors &at, const utf8_character &character, std::size_t length) {
    if (length == 0)
        return status::needs_icu;
    const std::string_view bytes(reinterpret_cast<const char *>(character.data()), length);
    return put(at, bytes) ? status::done : status::full;
}

inline status put_single(cursors &at, const code_table &table, unsigned char byte) {
    return put_bytes(at, table.singles[byte], table.lengths[byte]);
}

// No pair becomes ASCII.
inline status put_pair(cursors &at, const code_table &table, unsigned char lead, unsigned char trail) {
    const utf8_character &character = table.pairs[static_cast<std::size_t>(lead << 8 | trail)];
    return put_bytes(at, character, character[2] ? 3 : character[1] ? 2 : 0);
}

} // namespace zel
