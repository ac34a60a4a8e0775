// Extended MIME parameters (RFC 2231). Out: a whole parameter, name included, percent-encoded and broken into
// numbered segments, one a line. In: one value, which the host has taken out of the header and whose segments
// it has joined.
//
// Invariant: neither text is written to; what does not fit stops the output behind the last whole triple or
// character.

#include "zel.h"
#include "zel/base/charset_names.h"
#include "zel/base/escapes.h"
#include "zel/base/frame.h"
#include "zel/base/input.h"
#include "zel/base/output.h"
#include "zel/codec/base64.h"
#include "zel/conversion/buffer_conversion.h"
#include "zel/conversion/string_conversion.h"

#include <array>
#include <charconv>

namespace zel {
namespace {

// The attribute characters: neither the quotation mark nor the backslash is among them, so a quoted segment
// needs no escaping.
constexpr auto valid_rfc2231char = [] {
    std::array<bool, 128> valid = {};
    for (const char character : basis_64)
        valid[static_cast<unsigned char>(character)] = character != '/';
    for (const char character : std::string_view("!#$&-.^_`{|}~"))
        valid[static_cast<unsigned char>(character)] = true;
    return valid;
}();

static_assert(valid_rfc2231char['z'] && valid_rfc2231char['+'] && valid_rfc2231char['~']);
static_assert(!valid_rfc2231char['/'] && !valid_rfc2231char['\''] && !valid_rfc2231char['%']);

bool stands_for_itself(unsigned char byte) {
    return byte < 0x80 && valid_rfc2231char[byte];
}

heap_string percent_encode(std::string_view text) {
    const std::uint64_t size = static_cast<std::uint64_t>(text.size()) * 3 + 1;
    heap_string encoded = allocate<char>(size);
    output to = output_to(encoded.get(), saturate(size));
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        const char triple[] = {'%', hexdigits[byte >> 4], hexdigits[byte & 0xF]};
        if (stands_for_itself(byte))
            put(to, byte);
        else
            put(to, {triple, sizeof triple});
    }
    finish(to);
    return encoded;
}

constexpr std::size_t segment_limit = 66; // characters, of the prefix and the value

struct parameter {
    std::string_view name;
    std::string_view charset;
    std::string_view language;
};

struct segment {
    std::int32_t index;
    bool quoted;
};

constexpr std::size_t most_digits = 10;

bool put_prefix(output &to, const parameter &names, segment current) {
    char digits[most_digits];
    const char *end = std::to_chars(digits, digits + sizeof digits, current.index).ptr;
    const std::string_view number(digits, static_cast<std::size_t>(end - digits));
    if (!put(to, "\t") || !put(to, names.name) || !put(to, "*") || !put(to, number))
        return false;
    if (current.index > 0)
        return put(to, current.quoted ? "=\"" : "*=");
    return put(to, "*=") && put(to, names.charset) && put(to, "'") && put(to, names.language) && put(to, "'");
}

std::size_t prefix_length(const parameter &names, segment current) {
    output counted = counting_output();
    put_prefix(counted, names, current);
    return counted.length;
}

bool is_digit(char character) {
    return hexdigits.find(character) != std::string_view::npos;
}

// A line never ends within a triple: the cut moves behind the one that it would split.
std::size_t cut_behind_triple(std::string_view rest, std::size_t cut) {
    if (cut == rest.size())
        return cut;
    if (rest[cut] == '%')
        return cut + 3;
    if (!is_digit(rest[cut]) || cut == 0)
        return cut;
    if (rest[cut - 1] == '%')
        return cut + 2;
    return cut > 1 && is_digit(rest[cut - 1]) && rest[cut - 2] == '%' ? cut + 1 : cut;
}

bool put_triples(output &to, std::string_view encoded) {
    if (put(to, encoded))
        return true;
    std::string_view some = encoded.substr(0, room_left(to));
    if (const std::size_t last = some.rfind('%'); last != std::string_view::npos && last + 3 > some.size())
        some = some.substr(0, last);
    put(to, some);
    return false;
}

// Segments stay in the extended form as long as anything behind them needs it; from then on they are quoted.
void put_segments(output &to, const parameter &names, std::string_view rest) {
    const std::size_t last_triple = rest.rfind('%');
    const char *plain = last_triple == std::string_view::npos ? rest.data() : rest.data() + last_triple + 1;
    for (segment current = {0, false};; ++current.index) {
        current.quoted = current.index > 0 && rest.data() >= plain;
        const std::string_view line_end = current.index > 0 ? ";\r\n" : ""; // of the line before
        const std::size_t prefix = prefix_length(names, current);
        if (!fits(to, line_end.size() + prefix) || !put(to, line_end) || !put_prefix(to, names, current))
            return;
        const bool last = prefix > segment_limit || rest.size() < segment_limit - prefix;
        const std::size_t cut = last ? rest.size() : cut_behind_triple(rest, segment_limit - prefix);
        if (!put_triples(to, rest.substr(0, cut)) || !put(to, current.quoted ? "\"" : "") || last)
            return;
        rest.remove_prefix(cut);
    }
}

parameter names_of(const char *language, const char *param_name, const char *text) {
    if (!language)
        return {param_name, "", ""};
    return {param_name, ZEL_InternetMessageCharset(language, text), language};
}

bool needs_conversion(const parameter &names, const char *from_charset) {
    return has_text(from_charset) && !names.charset.empty();
}

// False where the conversion gave no result; the output is then as it was.
bool put_parameter(output &to, const parameter &names, const char *from_charset, const char *text) {
    heap_string converted;
    if (needs_conversion(names, from_charset)) {
        converted = local_to_local(text, from_charset, names.charset.data());
        if (!converted)
            return false;
        text = converted.get();
    }
    const heap_string encoded = percent_encode(text);
    if (!encoded)
        return false;
    put_segments(to, names, encoded.get());
    return true;
}

// The documented formula counts neither the prefixes of further segments nor what a conversion adds; it is
// enough for a value that surely stands on one line.
std::int32_t estimate_parameter(const parameter &names, const char *from_charset, const char *text,
                                std::uint64_t formula) {
    const std::int32_t converted = needs_conversion(names, from_charset)
                                       ? ZEL_GetResultBufferSize(text, -1, from_charset, names.charset.data())
                                       : saturate(std::strlen(text) + 1);
    const std::uint64_t line = prefix_length(names, {0, false}) + static_cast<std::uint64_t>(converted) * 3;
    if (line < std::min<std::uint64_t>(segment_limit, formula))
        return saturate(formula);
    return size_or_need(formula, [&](output &counted) { put_parameter(counted, names, from_charset, text); });
}

struct extended_value {
    char charset[33]; // up to 32 characters; what is longer is cut there, and one character more is passed
                      // over
    const char *text;
};

const char *pass_field(const char *from, std::size_t longest, std::size_t &length) {
    length = 0;
    while (length < longest && from[length] && from[length] != '\'')
        ++length;
    return from + length + (from[length] ? 1 : 0);
}

// A text with fewer than two quotes has no fields: it is a bare value, in which an apostrophe may stand.
extended_value split_value(const char *text) {
    extended_value value = {"", text};
    const char *quote = std::strchr(text, '\'');
    if (!quote || !std::strchr(quote + 1, '\''))
        return value;
    std::size_t length = 0;
    const char *language = pass_field(text, sizeof value.charset - 1, length);
    *std::copy_n(text, length, value.charset) = '\0';
    value.text = pass_field(language, 10, length);
    return value;
}

// A "%" that fewer than two characters follow stands for itself.
heap_string percent_decode(std::string_view text) {
    heap_string decoded = allocate<char>(text.size() + 1);
    output to = output_to(decoded.get(), saturate(text.size() + 1));
    for (; !text.empty(); text.remove_prefix(1)) {
        if (text.front() != '%' || text.size() < 3) {
            put(to, static_cast<unsigned char>(text.front()));
            continue;
        }
        const int high = hex_value(static_cast<unsigned char>(text[1]));
        const int low = hex_value(static_cast<unsigned char>(text[2]));
        const bool is_triple = high != not_hex && low != not_hex;
        put(to, static_cast<unsigned char>(is_triple ? high << 4 | low : '?'));
        text.remove_prefix(2);
    }
    finish(to);
    return decoded;
}

void put_value(output &to, const extended_value &value, const char *decoded, const char *to_charset) {
    const heap_string converted = local_to_local(decoded, value.charset, to_charset);
    if (!converted || put(to, converted.get()))
        return;
    const bool is_copy = std::strcmp(converted.get(), decoded) == 0;
    if (!is_copy)
        put_some_converted(to, look_up(value.charset, or_local_charset(to_charset)), decoded);
    else
        put_some(to, decoded);
}

// A conversion never gives more than the size that is asked for beforehand.
std::int32_t estimate_value(const extended_value &value, const char *decoded, const char *to_charset,
                            std::uint64_t formula) {
    const std::int32_t converted =
        *value.charset ? ZEL_GetResultBufferSize(decoded, -1, value.charset, or_local_charset(to_charset))
                       : saturate(std::strlen(decoded));
    if (static_cast<std::uint64_t>(converted) < formula)
        return saturate(formula);
    return size_or_need(formula, [&](output &counted) { put_value(counted, value, decoded, to_charset); });
}

} // namespace
} // namespace zel

using namespace zel;

int32_t ZEL_LocalToRFC2231(const char *language, const char *param_name, const char *from_charset,
                           const char *text, char *to_buf, int32_t to_size) {
    if (!has_text(text)) {
        *to_buf = '\0';
        return 0;
    }
    const std::uint64_t formula = std::uint64_t{std::strlen(text)} * 3 + std::strlen(param_name) + 40;
    if (to_size < 0 && !has_started()) // the formula asks nothing of the library
        return saturate(formula);
    const parameter names = names_of(language, param_name, text);
    if (to_size < 0)
        return estimate_parameter(names, from_charset, text, formula);
    output to = output_to(to_buf, to_size);
    return put_parameter(to, names, from_charset, text) ? finish(to) : -1;
}

int32_t ZEL_RFC2231ToLocal(const char *, const char *text, const char *to_charset, char *to_buf,
                           int32_t to_size) {
    if (!has_text(text)) {
        *to_buf = '\0';
        return 0;
    }
    const std::uint64_t formula = std::uint64_t{std::strlen(text)} * 2;
    const extended_value value = split_value(text);
    const heap_string decoded = percent_decode(value.text);
    if (to_size < 0)
        return decoded && has_started() ? estimate_value(value, decoded.get(), to_charset, formula)
                                        : saturate(formula);
    output to = output_to(to_buf, to_size);
    if (decoded)
        put_value(to, value, decoded.get(), to_charset);
    return finish(to);
}
