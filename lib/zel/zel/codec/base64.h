// Base64 (RFC 2045), group by group through a table of all twelve bits, or, for text of many lines, by eight
// groups at once where the processor has AVX2.
//
// Invariant: what is read and what is written are the bytes and the characters of whole groups and line
// breaks, with nothing beside them, so a text and its buffer may end anywhere.

#pragma once

#include "zel/base/output.h"

#include <cstdint>

namespace zel {

inline constexpr std::string_view basis_64 =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

inline constexpr std::size_t group_characters = 4; // for three bytes
inline constexpr std::size_t base64_line = 68;     // characters: a line never grows by a group beyond 70
inline constexpr std::size_t base64_line_bytes = base64_line / group_characters * 3;

// Where encoding has come to, in the text and in the buffer.
struct base64_cursors {
    const char *from;
    char *to;
};

// These begin at the cursors, go as far as they say, and leave the last, padded group out.
using base64_encoder = base64_cursors(base64_cursors at, const char *end);

base64_encoder encode_groups; // all whole groups, unbroken

// All whole lines, each with its CR LF, and maybe some groups of the line behind them.
base64_encoder encode_lines;
base64_encoder encode_lines_by_groups;

// Null where the processor does not have the instructions.
base64_encoder *wide_line_encoder();

constexpr std::uint64_t base64_size(std::uint64_t bytes) {
    return (bytes + 2) / 3 * 4;
}

// One unbroken Base64 text, written whole or not at all.
bool put_base64(output &to, std::string_view from);

// Decodes the text of an encoded word, which holds no zero byte itself, into to, which has room for as many
// bytes as from has. Gives the number of bytes, up to one that is encoded as a zero byte, which ends the text
// of a word. Broken text never fails: see the rules beside the code.
std::size_t decode_b(std::string_view from, char *to);

} // namespace zel
