// What ICU does with the characters of one charset, taken once and laid out flat: bytes to UTF-8 and Unicode
// to bytes, one read a character. A table decides only what ICU converts both alone and without error: a
// character of one or two bytes that is a single one of the Basic Multilingual Plane. All else is left to
// ICU.
//
// Invariant: constant once it is built; at most 400 KiB.

#pragma once

#include "zel/base/owned.h"

#include <unicode/ucnv.h>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace zel {

// What a charset is to the fast path. All but UTF-8 and the others can have a table: those whose texts have
// no states, and ISO-2022-JP.
enum class charset_kind { other, utf8, iso2022jp, single_byte, multi_byte };
charset_kind kind_of(const UConverter *cnv);

// A character in UTF-8, of three bytes at most, with zeros behind it; zeros alone if it is not decided.
using utf8_character = std::array<unsigned char, 4>;

// A character in the charset as its bytes stand in the text, the first one lowest. A character of one byte
// leaves the other 0; a code of 0 is not decided.
using charset_code = std::uint16_t;

constexpr charset_code first_double_byte = 0x100;

struct code_table {
    unsigned char first_latin1; // from here on a byte is its code point, as in Latin-1; 0: nowhere
    std::array<bool, 256> leads;
    std::array<utf8_character, 256> singles;
    std::array<unsigned char, 256> lengths;              // of the singles; 0: not decided
    std::array<std::array<unsigned char, 2>, 256> slots; // the singles, if one byte of ASCII or two of others
    std::array<utf8_character, 65536> pairs;             // by both bytes, the lead byte highest
    std::array<charset_code, 65536> codes;               // by code point
};

// Between two charsets of single bytes: what each byte becomes; 0: not decided.
using byte_table = std::array<unsigned char, 256>;

// Null where plain ASCII text is not the identity in the charset, and where there is no memory.
heap<code_table> build_code_table(const char *charset);

// For charsets that keep all of ASCII.
heap<byte_table> build_byte_table(const char *from_charset, const char *to_charset);

} // namespace zel
