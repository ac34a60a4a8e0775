// Quoted-printable bodies (RFC 2045), and the "Q" text of encoded words (RFC 2047). They see bytes and know
// nothing of charsets.
//
// Invariant: pure functions of their arguments; what is written is a whole number of units (a character, a
// triple, a line break), and nothing lands behind the output's end.

#pragma once

#include "zel/base/output.h"

#include <cstdint>

namespace zel {

// Body mode writes quoted-printable text; Q mode writes one encoded word after another, labelled with
// charset, each on a line of its own. Gives 0, or -1 when the output ran out: it then ends behind the last
// whole triple or, in Q mode, behind the last whole word. The text is not terminated.
std::int32_t mime_encode_qp_src(std::string_view from, output &to, bool q_mode, const char *charset);

inline constexpr std::size_t decoding_slack = 16;

// Decodes the text of an encoded word, which holds no zero byte itself, into to, which has room for as many
// bytes as from has and for the slack, as whole vectors are stored. Gives the number of bytes, up to one that
// is encoded as a zero byte, which ends the text of a word. Broken text never fails: see the rules beside the
// code.
std::size_t decode_q(std::string_view from, char *to);

} // namespace zel
