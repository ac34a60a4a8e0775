// A line is written unit by unit, from a table that has each byte as it stands on the wire, up to a line end
// or the line's limit; the code around that breaks lines and frames words. A decoder copies what needs no
// decoding by vectors, and finds the escapes by the bitmask of a block.
//
// Invariant: a unit is stored whole or not at all; the limits of a line hold for every byte sequence.

#include "zel/codec/quoted_printable.h"

#include "zel/base/escapes.h"
#include "zel/base/input.h"
#include "zel/codec/base64.h"
#include "zel/simd/block64.h"

#include <array>
#include <bit>

namespace zel {
namespace {

// A byte as it is written; four bytes long, so that one store takes it whole.
struct qp_unit {
    std::array<char, 3> characters;
    std::uint8_t length; // 0 for a line end
};

struct qp_mode {
    std::array<qp_unit, 256> units;
    std::uint32_t limit; // a line that has come so far is broken
};

constexpr bool is_one_of(unsigned char byte, std::string_view set) {
    return set.find(static_cast<char>(byte)) != std::string_view::npos;
}

constexpr bool is_blank(unsigned char byte) {
    return byte == ' ' || byte == '\t';
}

// More is encoded than RFC 2045 asks for: "=?_" so that words and bodies differ little, and all other
// punctuation so that gateways between character sets, and transports that treat a leading dot as their own,
// leave the text alone.
constexpr bool is_literal(unsigned char byte, bool q_mode) {
    return is_one_of(byte, basis_64) || is_one_of(byte, "!*-") || (!q_mode && is_one_of(byte, "()"));
}

constexpr qp_unit unit_of(unsigned char byte, bool q_mode) {
    if (is_one_of(byte, "\r\n"))
        return {{}, 0};
    if (is_literal(byte, q_mode))
        return {{static_cast<char>(byte)}, 1};
    if (is_blank(byte))
        return {{q_mode ? '_' : static_cast<char>(byte)}, 1};
    return {{'=', hexdigits[byte >> 4], hexdigits[byte & 0xF]}, 3};
}

constexpr qp_mode mode_of(bool q_mode, std::uint32_t limit) {
    qp_mode mode = {{}, limit};
    for (unsigned byte = 0; byte < mode.units.size(); ++byte)
        mode.units[byte] = unit_of(static_cast<unsigned char>(byte), q_mode);
    return mode;
}

constexpr qp_mode qp_body = mode_of(false, 73);
constexpr qp_mode q_word = mode_of(true, 60);

static_assert(qp_body.units['='].length == 3 && qp_body.units['.'].length == 3 &&
              qp_body.units['('].length == 1);
static_assert(q_word.units['+'].length == 1 && q_word.units['\0'].length == 3 &&
              q_word.units['('].length == 3);

constexpr std::size_t ample = 80; // for any line, and what a store writes behind its last unit

constexpr std::ptrdiff_t three_triples = 9; // behind which a fourth unit still begins before the limit

inline char *store_unit(const qp_unit &unit, char *to) {
    std::memcpy(to, &unit, sizeof unit);
    return to + unit.length;
}

// Up to a line end or the limit, which is looked at once for four bytes while it is far. Both modes have
// walks of their own, with their table and their limit built in.
template <const qp_mode &mode>
char *store_units(input &from, char *to, const char *limit) {
    const unsigned char *at = from.at;
    for (; from.end - at >= 4 && limit - to > three_triples; at += 4) {
        const qp_unit &first = mode.units[at[0]], &second = mode.units[at[1]];
        const qp_unit &third = mode.units[at[2]], &fourth = mode.units[at[3]];
        if (!first.length || !second.length || !third.length || !fourth.length)
            break;
        to = store_unit(fourth, store_unit(third, store_unit(second, store_unit(first, to))));
    }
    for (; at != from.end && to < limit && mode.units[*at].length; ++at)
        to = store_unit(mode.units[*at], to);
    from.at = at;
    return to;
}

// Up to a line end or the line's limit.
template <const qp_mode &mode>
bool put_units(input &from, output &to, std::uint32_t &column) {
    if (fits(to, ample)) {
        char uncounted[ample];
        char *const start = to.start ? to.start + to.length : uncounted;
        const char *const end = store_units<mode>(from, start, start + mode.limit - column);
        to.length += static_cast<std::size_t>(end - start);
        column += static_cast<std::uint32_t>(end - start);
        return true;
    }
    for (; !ended(from) && column < mode.limit && mode.units[*from.at].length; ++from.at) {
        const qp_unit &unit = mode.units[*from.at];
        if (!put(to, {unit.characters.data(), unit.length}))
            return false;
        column += unit.length;
    }
    return true;
}

bool put_line_end(input &from, output &to, std::uint32_t &column) {
    from.at += peek(from) == '\r' && peek(from, 1) == '\n' ? 2 : 1;
    column = 0;
    return put(to, "\r\n");
}

bool put_soft_break(output &to, std::uint32_t &column) {
    column = 0;
    return put(to, "=\r\n");
}

// A blank at the end of a line does not survive all transports.
bool put_body(input from, output &to) {
    std::uint32_t column = 0;
    while (!ended(from)) {
        if (!put_units<qp_body>(from, to, column))
            return false;
        const bool broken = column >= qp_body.limit || (!ended(from) && column > 0 && is_blank(from.at[-1]));
        if (broken && !put_soft_break(to, column))
            return false;
        if (!ended(from) && qp_body.units[*from.at].length == 0 && !put_line_end(from, to, column))
            return false;
    }
    return true;
}

bool put_word_opening(output &to, std::string_view lead, std::string_view charset) {
    return fits(to, lead.size() + charset.size() + 5) && put(to, lead) && put(to, "=?") && put(to, charset) &&
           put(to, "?Q?");
}

// word_end stays behind the last whole word.
bool put_words(input from, output &to, std::string_view charset, std::size_t &word_end) {
    if (!put_word_opening(to, "", charset))
        return false;
    std::uint32_t column = 0;
    bool word_closed = false;
    while (!ended(from)) {
        if (!put_units<q_word>(from, to, column))
            return false;
        if (column < q_word.limit) {
            if (!ended(from) && !put_line_end(from, to, column))
                return false;
            continue;
        }
        if (!put(to, "?="))
            return false;
        word_end = to.length;
        if (!put(to, "\r\n"))
            return false;
        column = 0;
        word_closed = ended(from);
        if (!word_closed && !put_word_opening(to, "\t", charset))
            return false;
    }
    return word_closed || put(to, "?=");
}

constexpr auto hex_values = [] {
    std::array<unsigned char, 256> values = {}; // what is not a hex digit counts as 0
    for (unsigned value = 0; value < values.size(); ++value)
        values[value] = static_cast<unsigned char>(std::max(hex_value(static_cast<unsigned char>(value)), 0));
    return values;
}();

static_assert(hex_values['9'] == 9 && hex_values['f'] == 15 && hex_values['F'] == 15 && hex_values['G'] == 0);

static_assert(decoding_slack >= vector_size);

constexpr std::size_t two_digits = 2;

// What is in it behind the block may be loaded, but plays no part.
using padded_block = std::array<char, block_size + decoding_slack>;

bitmask64 escapes_in(const padded_block &block, std::size_t length) {
    return places_of('=', load_block(block.data())) & first_bits(length);
}

// By whole vectors. A result is never longer than the text that it comes from, and so the last of them, one
// even for no text, writes into the slack at most.
char *store_literals(const char *from, std::size_t length, char *to) {
    std::size_t at = 0;
    do {
        const vector_bytes bytes = load_vector(from + at);
        store_vector(to + at, select(are_byte(bytes, '_'), vector_bytes{} + ' ', bytes));
        at += vector_size;
    } while (at < length);
    return to + length;
}

char hex_byte(const char *digits) {
    const auto value = [=](int place) { return hex_values[static_cast<unsigned char>(digits[place])]; };
    return static_cast<char>(value(0) << 4 | value(1));
}

// Two characters follow the block, so that each "=" in it has its digits, which are taken with it. A zero
// byte leaves no more to take.
char *decode_block(std::string_view &from, char *to) {
    const std::size_t length = std::min(from.size() - two_digits, block_size);
    padded_block block;
    std::memcpy(block.data(), from.data(), length + two_digits);
    std::size_t at = 0;
    for (bitmask64 escapes = escapes_in(block, length); escapes != 0;) {
        const std::size_t escape = first_of(escapes);
        to = store_literals(&block[at], escape - at, to);
        const char byte = hex_byte(&block[escape + 1]);
        if (byte == '\0') {
            from = {};
            return to;
        }
        *to++ = byte;
        at = escape + 1 + two_digits;
        escapes &= ~(bitmask64{0b111} << escape);
    }
    if (at < length) {
        to = store_literals(&block[at], length - at, to);
        at = length;
    }
    from.remove_prefix(at);
    return to;
}

} // namespace

std::int32_t mime_encode_qp_src(std::string_view text, output &to, bool q_mode, const char *charset) {
    const auto *start = reinterpret_cast<const unsigned char *>(text.data());
    const input from = {start, start + text.size()};
    if (!q_mode)
        return put_body(from, to) ? 0 : -1;
    std::size_t word_end = to.length;
    if (put_words(from, to, charset, word_end))
        return 0;
    to.length = word_end;
    return -1;
}

// A "=" that fewer than two characters follow stands for itself, as does what follows it; behind any other
// "=", what is not a hex digit counts as 0.
std::size_t decode_q(std::string_view from, char *to) {
    char *const start = to;
    while (from.size() > two_digits)
        to = decode_block(from, to);
    for (; !from.empty() && from.front() != '='; from.remove_prefix(1))
        *to++ = from.front() == '_' ? ' ' : from.front();
    to = std::copy(from.begin(), from.end(), to);
    return static_cast<std::size_t>(to - start);
}

} // namespace zel
