// The byte-level transfer encodings of MIME: quoted-printable bodies (RFC 2045), the "Q" and "B" texts of
// encoded words (RFC 2047), and Base64. They see bytes and know nothing of charsets.
//
// Invariant: pure functions of their arguments; what is written is a whole number of units (a character, a
// triple, a line break, a Base64 group), and nothing lands behind the output's end.

#pragma once

#include "zel/base/base64_lines.h"
#include "zel/base/output.h"

namespace zel {

inline constexpr std::string_view hexdigits = "0123456789ABCDEF";

// Body mode writes quoted-printable text; Q mode writes one encoded word after another, labelled with
// charset, each on a line of its own. Gives 0, or -1 when the output ran out: it then ends behind the last
// whole triple or, in Q mode, behind the last whole word. The text is not terminated.
std::int32_t mime_encode_qp_src(std::string_view from, output &to, bool q_mode, const char *charset);

constexpr std::uint64_t base64_size(std::uint64_t bytes) {
    return (bytes + 2) / 3 * 4;
}

// One unbroken Base64 text, written whole or not at all.
bool put_base64(output &to, std::string_view from);

inline constexpr std::size_t decoding_slack = 16;

// Decode the encoded text of a word, which holds no zero byte itself, into to, which has room for as many
// bytes as from has and for the slack, as they write by wide steps. Both give the number of bytes, up to one
// that is encoded as a zero byte, which ends the text of a word. Broken text never fails: see the rules
// beside the code.
std::size_t decode_b(std::string_view from, char *to);
std::size_t decode_q(std::string_view from, char *to);

constexpr int not_hex = -1;

constexpr int hex_value(unsigned char character) {
    if (character >= '0' && character <= '9')
        return character - '0';
    const unsigned char letter = character | 0x20;
    return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : not_hex;
}

} // namespace zel
