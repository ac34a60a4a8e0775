// Base64 (RFC 2045) without its last, padded group: group by group through a table of all twelve bits, or,
// for text of many lines, by steps of eight groups where the processor has AVX2.
//
// Invariant: what is read and what is written are the bytes and the characters of whole groups and line
// breaks, with nothing beside them, so a text and its buffer may end anywhere.

#pragma once

#include <cstddef>
#include <string_view>

namespace zel {

inline constexpr std::string_view basis_64 =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

inline constexpr std::size_t base64_line = 68; // characters: a line never grows by a group beyond 70
inline constexpr std::size_t base64_line_bytes = base64_line / 4 * 3;

// Where encoding has come to, in the text and in the buffer.
struct base64_cursors {
    const char *from;
    char *to;
};

// All of these begin at the cursors and go as far as they say.
using base64_encoder = base64_cursors(base64_cursors at, const char *end);

base64_encoder encode_groups; // all whole groups, unbroken

// All whole lines, each with its CR LF, and maybe some groups of the line behind them.
base64_encoder encode_lines;
base64_encoder encode_lines_by_groups;

// Null where the processor does not have the instructions.
base64_encoder *wide_line_encoder();

} // namespace zel
