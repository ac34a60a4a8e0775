#include "zel/base/transfer_encoding.h"

#include "zel.h"

#include <array>

namespace zel {
namespace {

enum class qp_class : unsigned char { literal, encoded, parenthesis, blank, line_end };

constexpr bool is_one_of(unsigned char byte, std::string_view set) {
    return set.find(static_cast<char>(byte)) != std::string_view::npos;
}

// More is encoded than RFC 2045 asks for: "=?_" so that one table serves encoded words too, and all other
// punctuation so that gateways between character sets, and transports that treat a leading dot as their own,
// leave the text alone.
constexpr qp_class classify(unsigned char byte) {
    if (is_one_of(byte, "\r\n"))
        return qp_class::line_end;
    if (is_one_of(byte, basis_64) || is_one_of(byte, "!*-"))
        return qp_class::literal;
    if (is_one_of(byte, "()"))
        return qp_class::parenthesis;
    if (is_one_of(byte, " \t"))
        return qp_class::blank;
    return qp_class::encoded;
}

constexpr auto qp_classes = [] {
    std::array<qp_class, 256> classes = {};
    for (unsigned byte = 0; byte < classes.size(); ++byte)
        classes[byte] = classify(static_cast<unsigned char>(byte));
    return classes;
}();

static_assert(qp_classes['='] == qp_class::encoded && qp_classes['.'] == qp_class::encoded);
static_assert(qp_classes['+'] == qp_class::literal && qp_classes['\0'] == qp_class::encoded);

constexpr std::uint32_t body_line_limit = 73;
constexpr std::uint32_t word_text_limit = 60;

struct qp_line {
    std::uint32_t column;
    bool trailing_blank; // a blank at the end of a line does not survive all transports
};

bool put_soft_break(output &to, qp_line &line) {
    line = {};
    return put(to, "=\r\n");
}

bool put_line_end(output &to, qp_line &line) {
    if (line.trailing_blank && !put_soft_break(to, line))
        return false;
    line = {};
    return put(to, "\r\n");
}

bool put_literal(output &to, unsigned char byte, qp_line &line) {
    line.column += 1;
    return put(to, byte);
}

bool put_triple(output &to, unsigned char byte, qp_line &line) {
    const char triple[] = {'=', hexdigits[byte >> 4], hexdigits[byte & 0xF]};
    line.column += sizeof triple;
    return put(to, {triple, sizeof triple});
}

// Takes one byte from the text, or the CR LF of a line end.
bool put_next(std::string_view &from, output &to, bool q_mode, qp_line &line) {
    const auto byte = static_cast<unsigned char>(from.front());
    const qp_class kind = qp_classes[byte];
    from.remove_prefix(from.substr(0, 2) == "\r\n" ? 2 : 1);
    if (kind == qp_class::line_end)
        return put_line_end(to, line);
    line.trailing_blank = kind == qp_class::blank && !q_mode;
    switch (kind) {
    case qp_class::literal:
        return put_literal(to, byte, line);
    case qp_class::blank:
        return put_literal(to, q_mode ? '_' : byte, line);
    case qp_class::parenthesis:
        return q_mode ? put_triple(to, byte, line) : put_literal(to, byte, line);
    default:
        return put_triple(to, byte, line);
    }
}

bool put_body(std::string_view from, output &to) {
    qp_line line = {};
    while (!from.empty()) {
        if (!put_next(from, to, false, line))
            return false;
        if (line.column >= body_line_limit && !put_soft_break(to, line))
            return false;
    }
    return true;
}

bool put_word_opening(output &to, std::string_view lead, std::string_view charset) {
    return fits(to, lead.size() + charset.size() + 5) && put(to, lead) && put(to, "=?") && put(to, charset) &&
           put(to, "?Q?");
}

// word_end stays behind the last whole word.
bool put_words(std::string_view from, output &to, std::string_view charset, std::size_t &word_end) {
    if (!put_word_opening(to, "", charset))
        return false;
    qp_line line = {};
    bool word_closed = false;
    while (!from.empty()) {
        if (!put_next(from, to, true, line))
            return false;
        if (line.column < word_text_limit)
            continue;
        if (!put(to, "?="))
            return false;
        word_end = to.length;
        if (!put(to, "\r\n"))
            return false;
        line = {};
        word_closed = from.empty();
        if (!word_closed && !put_word_opening(to, "\t", charset))
            return false;
    }
    return word_closed || put(to, "?=");
}

constexpr std::size_t base64_line = 68; // characters: a line never grows by a group beyond 70

char *encode_group(unsigned bits, char *to) {
    *to++ = basis_64[bits >> 18 & 0x3F];
    *to++ = basis_64[bits >> 12 & 0x3F];
    *to++ = basis_64[bits >> 6 & 0x3F];
    *to++ = basis_64[bits & 0x3F];
    return to;
}

unsigned byte_at(std::string_view from, std::size_t at) {
    return at < from.size() ? static_cast<unsigned char>(from[at]) : 0;
}

// The one or two bytes behind the last whole group. The padding goes by their number alone.
char *encodeChunk(std::string_view from, char *to) {
    encode_group(byte_at(from, 0) << 16 | byte_at(from, 1) << 8, to);
    to[3] = '=';
    if (from.size() == 1)
        to[2] = '=';
    return to + 4;
}

char *encode_base64(std::string_view from, char *to) {
    for (; from.size() >= 3; from.remove_prefix(3))
        to = encode_group(byte_at(from, 0) << 16 | byte_at(from, 1) << 8 | byte_at(from, 2), to);
    return from.empty() ? to : encodeChunk(from, to);
}

constexpr auto base64_values = [] {
    std::array<unsigned char, 256> values = {}; // what is not in the alphabet counts as 0 and takes its place
    for (unsigned value = 0; value < basis_64.size(); ++value)
        values[static_cast<unsigned char>(basis_64[value])] = static_cast<unsigned char>(value);
    return values;
}();

static_assert(base64_values['A'] == 0 && base64_values['/'] == 63 && base64_values['='] == 0);

} // namespace

std::int32_t mime_encode_qp_src(std::string_view from, output &to, bool q_mode, const char *charset) {
    if (!q_mode)
        return put_body(from, to) ? 0 : -1;
    std::size_t word_end = to.length;
    if (put_words(from, to, charset, word_end))
        return 0;
    to.length = word_end;
    return -1;
}

bool put_base64(output &to, std::string_view from) {
    const std::size_t size = base64_size(from.size());
    if (!fits(to, size))
        return false;
    if (to.start)
        encode_base64(from, to.start + to.length);
    to.length += size;
    return true;
}

// Groups go on behind a padded group, and up to three characters left over at the end give nothing.
std::size_t decode_b(std::string_view from, char *to) {
    char *const start = to;
    for (; from.size() >= 4; from.remove_prefix(4)) {
        unsigned bits = 0;
        for (std::size_t i = 0; i < 4; ++i)
            bits = bits << 6 | base64_values[static_cast<unsigned char>(from[i])];
        *to++ = static_cast<char>(bits >> 16);
        if (from[2] == '=')
            continue;
        *to++ = static_cast<char>(bits >> 8);
        if (from[3] != '=')
            *to++ = static_cast<char>(bits);
    }
    return static_cast<std::size_t>(to - start);
}

// A "=" that fewer than two characters follow stands for itself, as does what follows it; behind any other
// "=", what is not a hex digit counts as 0.
std::size_t decode_q(std::string_view from, char *to) {
    char *const start = to;
    while (!from.empty()) {
        if (from.front() != '=') {
            *to++ = from.front() == '_' ? ' ' : from.front();
            from.remove_prefix(1);
        } else if (from.size() < 3) {
            to = std::copy(from.begin(), from.end(), to);
            from = {};
        } else {
            const int high = std::max(hex_value(static_cast<unsigned char>(from[1])), 0);
            const int low = std::max(hex_value(static_cast<unsigned char>(from[2])), 0);
            *to++ = static_cast<char>(high << 4 | low);
            from.remove_prefix(3);
        }
    }
    return static_cast<std::size_t>(to - start);
}

} // namespace zel

using namespace zel;

int32_t ZEL_ApplyBase64Encoding(const char *from_buf, int32_t from_len, char *to_buf, int32_t to_size) {
    constexpr std::size_t line_bytes = base64_line / 4 * 3;
    std::string_view from(from_buf, from_len > 0 ? static_cast<std::size_t>(from_len) : 0);
    if (to_size < 0) {
        const std::uint64_t need = base64_size(from.size()) + from.size() / line_bytes * 2 + 1;
        return saturate(std::max<std::uint64_t>(from.size() * 2, need));
    }
    char *to = to_buf;
    for (; from.size() >= line_bytes; from.remove_prefix(line_bytes)) {
        to = encode_base64(from.substr(0, line_bytes), to);
        *to++ = '\r';
        *to++ = '\n';
    }
    to = encode_base64(from, to);
    *to = '\0';
    return saturate(static_cast<std::uint64_t>(to - to_buf));
}
