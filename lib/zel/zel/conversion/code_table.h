// What ICU does with the characters of one charset, taken once and laid out flat: bytes to UTF-8 and Unicode
// to bytes, one read a character. A table decides only what ICU converts both alone and without error: a
// character of one or two bytes that is a single one of the Basic Multilingual Plane. All else is undecided,
// and is left to ICU.
//
// Invariant: constant once it is built; at most 400 KiB.

#pragma once

#include "zel/base/owned.h"

#include <unicode/ucnv.h>

#include <array>

namespace zel {

struct utf8_character {
    std::array<unsigned char, 3> bytes;
    unsigned char length; // 0: undecided
};

// A character in the charset, as it stands in the text: a pair, or one byte behind a 0. Two of them:
// undecided.
using charset_code = std::array<unsigned char, 2>;

constexpr unsigned char first_lead_byte = 0x80;

// What each byte of a charset becomes: a character of UTF-8, or a byte of another charset.
using byte_table = std::array<utf8_character, 256>;

struct code_table {
    bool keeps_ascii; // all 128, so that nothing but high bytes needs the table
    bool single_byte; // no byte leads another
    byte_table singles;
    std::array<bool, 256> leads;
    std::array<utf8_character, std::size_t{128} * 256> pairs; // by lead byte from 0x80 on, then by trail byte
    std::array<charset_code, 65536> codes;                    // by code point
};

// What a charset is to the fast path. All but UTF-8 and the others can have a table: those whose texts have
// no states, and ISO-2022-JP.
enum class charset_kind { other, utf8, iso2022jp, single_byte, multi_byte };
charset_kind kind_of(const UConverter *cnv);

// Null where ASCII is not the identity in the charset, and where there is no memory.
heap<code_table> build_code_table(const char *charset);

// A table between two charsets of single bytes that keep all of ASCII.
heap<byte_table> build_byte_table(const char *from_charset, const char *to_charset);

} // namespace zel
