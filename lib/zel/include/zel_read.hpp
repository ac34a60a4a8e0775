/**
 * @file zel_read.hpp
 * Readers for whatever the Internet sends; zel.hpp includes this. They know the charsets of mail by a list of
 * their own, so that no name from the wire reaches the cache of converters, and their work is linear in what
 * they read.
 *
 * What they give is text, not a header: an encoded word may stand for line breaks, NUL bytes and other
 * controls, which a host takes out before it shows the text or sends it on. write_header() does.
 */

#ifndef ZEL_READ_HPP
#define ZEL_READ_HPP

#include "zel_charsets.hpp"

namespace zel {
inline namespace face {

/** @cond */
namespace detail {

constexpr bool is_continuation(char byte) {
    return (byte & 0xC0) == 0x80;
}

/* The bytes of the character that a text begins with, 0 where it is none: cut off, too long for its value, a
   surrogate, or beyond U+10FFFF. */
inline std::size_t character_size(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text[0]);
    if (lead < 0x80)
        return 1;
    const std::size_t size = lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 0;
    if (size == 0 || text.size() < size)
        return 0;
    const auto second = static_cast<unsigned char>(text[1]);
    const int lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const int highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    const bool are_continued =
        (size < 3 || is_continuation(text[2])) && (size < 4 || is_continuation(text[3]));
    return second >= lowest && second <= highest && are_continued ? size : 0;
}

inline bool is_utf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t size = character_size(text);
        if (size == 0)
            return false;
        text.remove_prefix(size);
    }
    return true;
}

/* UTF-8 with U+FFFD for what is none. The two names are one charset: under one name the library would copy
   the bytes unseen. */
inline std::string sound_utf8(std::string_view bytes) {
    return is_utf8(bytes) ? std::string(bytes) : converted(bytes, "utf8", "utf-8");
}

/* Bytes that no label goes with: UTF-8 where all of them are, else the fallback charset. */
inline std::string read_unlabelled(std::string_view bytes, std::string_view fallback) {
    return is_utf8(bytes) ? std::string(bytes) : convert(bytes, fallback, "utf-8");
}

constexpr bool begins(std::string_view text, std::string_view beginning) {
    return text.substr(0, beginning.size()) == beginning;
}

/* The length of an escape sequence of ISO-2022-JP that another follows, or of a change to ASCII and back in
   HZ. */
inline std::size_t idle_escape(std::string_view rest) {
    if (begins(rest, "~}~{"))
        return 4;
    const std::size_t length = begins(rest, "\x1b$(") ? 4 : 3;
    return begins(rest, "\x1b") && rest.size() > length && rest[length] == '\x1b' ? length : 0;
}

/* ICU takes a run without characters for broken text, but such stand where words are joined. */
inline std::string without_idle_escapes(std::string_view bytes, char mark) {
    std::string text;
    text.reserve(bytes.size());
    while (!bytes.empty()) {
        const std::size_t escape = std::min(bytes.find(mark), bytes.size() - 1);
        const std::size_t idle = idle_escape(bytes.substr(escape));
        text += bytes.substr(0, escape + (idle ? 0 : 1));
        bytes.remove_prefix(escape + (idle ? idle : 1));
    }
    return text;
}

/* Gives the wave dash, the double line and the minus of JIS X 0208 the characters of the standard: ICU reads
   them as Windows does. */
inline void standardize_punctuation(std::string &text) {
    constexpr std::string_view pairs[][2] = {{"～", "〜"}, {"∥", "‖"}, {"－", "−"}};
    for (const auto &[windows, standard] : pairs)
        for (std::size_t at = text.find(windows); at != std::string::npos; at = text.find(windows, at))
            text.replace(at, windows.size(), standard);
}

inline std::string read_bytes(std::string_view bytes, std::string_view charset, std::string_view fallback) {
    if (charset == "us-ascii")
        return read_unlabelled(bytes, fallback);
    if (charset == "utf-8")
        return sound_utf8(bytes);
    const bool is_japanese = begins(charset, "iso-2022-jp"), is_hz = charset == "hz-gb-2312";
    std::string text = is_japanese || is_hz ? converted(without_idle_escapes(bytes, is_hz ? '~' : '\x1b'),
                                                        charset.data(), "utf-8")
                                            : converted(bytes, charset.data(), "utf-8");
    if (is_japanese || charset == "euc-jp" || charset == "shift_jis")
        standardize_punctuation(text);
    return text;
}

constexpr bool is_blank(char byte) {
    return byte == ' ' || byte == '\t';
}

inline bool is_all_blank(std::string_view text) {
    return std::all_of(text.begin(), text.end(), is_blank);
}

/* Line breaks before a blank go, the blank stays; so does a line break go that ends the value. */
inline std::string unfolded(std::string_view value) {
    std::string text;
    text.reserve(value.size());
    for (std::size_t at = 0; at < value.size(); ++at) {
        const std::size_t breaks = value.substr(at, 2) == "\r\n" ? 2 : value[at] == '\n' ? 1 : 0;
        if (breaks && (at + breaks == value.size() || is_blank(value[at + breaks])))
            at += breaks - 1;
        else
            text += value[at];
    }
    return text;
}

/* The value of a digit of Base64, 64 for a foreign character. */
constexpr unsigned base64_digit(char byte) {
    return byte >= 'A' && byte <= 'Z'   ? static_cast<unsigned>(byte - 'A')
           : byte >= 'a' && byte <= 'z' ? static_cast<unsigned>(byte - 'a') + 26
           : byte >= '0' && byte <= '9' ? static_cast<unsigned>(byte - '0') + 52
           : byte == '+'                ? 62
           : byte == '/'                ? 63
                                        : 64;
}

/* Foreign characters are skipped, padding may be missing, and what stands behind it begins anew. */
inline void append_base64(std::string &bytes, std::string_view text) {
    unsigned bits = 0, count = 0;
    for (const char byte : text) {
        const unsigned digit = base64_digit(byte);
        if (byte == '=')
            count = 0;
        if (digit == 64)
            continue;
        bits = bits << 6 | digit;
        count += 6;
        if (count >= 8) {
            count -= 8;
            bytes += static_cast<char>(bits >> count & 0xFF);
        }
    }
}

/* The value of a hexadecimal digit, 16 for what is none. */
constexpr unsigned hex_digit(char byte) {
    return byte >= '0' && byte <= '9'                 ? static_cast<unsigned>(byte - '0')
           : small(byte) >= 'a' && small(byte) <= 'f' ? static_cast<unsigned>(small(byte) - 'a') + 10
                                                      : 16;
}

/* A mark and two digits are a byte; a mark with less behind it stands for itself. */
inline void append_unescaped(std::string &bytes, std::string_view text, char mark) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        const unsigned high = at + 2 < text.size() ? hex_digit(text[at + 1]) : 16;
        const unsigned low = at + 2 < text.size() ? hex_digit(text[at + 2]) : 16;
        if (text[at] == mark && high < 16 && low < 16) {
            bytes += static_cast<char>(high << 4 | low);
            at += 2;
        } else {
            bytes += text[at] == '_' && mark == '=' ? ' ' : text[at];
        }
    }
}

/* An encoded word (RFC 2047), decoded. It ends at 0 where there is none, and has no charset where it cannot
   be read. */
struct encoded_word {
    std::string_view charset;
    char encoding = '\0';
    std::string bytes;
    std::size_t end = 0;
};

/* Names that nobody knows are often given to text in UTF-8. */
inline std::string_view charset_of_word(std::string_view name, std::string_view bytes) {
    name = name.substr(0, name.find('*')); // a language may follow (RFC 2231, section 5)
    if (const std::optional<std::string_view> known = known_charset(name))
        return *known;
    return is_utf8(bytes) ? "utf-8" : "";
}

/* Reads the word that may stand at a "=?". `closing` is the first "?=" behind the frame that was looked at
   last, so that no part of the line is searched twice. */
inline encoded_word word_at(std::string_view line, std::size_t at, std::size_t &closing) {
    constexpr std::size_t longest_head = 80;
    const std::string_view head = line.substr(at + 2, longest_head);
    const std::size_t mark = head.find('?');
    if (mark == std::string_view::npos || head.size() < mark + 3 || head[mark + 2] != '?')
        return {};
    const std::size_t start = at + 2 + mark + 3;
    if (closing < start)
        closing = std::min(line.find("?=", start), line.size());
    if (closing == line.size())
        return {};
    encoded_word word = {{}, small(head[mark + 1]), {}, closing + 2};
    const std::string_view text = line.substr(start, closing - start);
    if (word.encoding == 'b')
        append_base64(word.bytes, text);
    else if (word.encoding == 'q')
        append_unescaped(word.bytes, text, '=');
    else
        return word;
    word.charset = charset_of_word(head.substr(0, mark), word.bytes);
    return word;
}

/* Neighbouring words of one charset and encoding, whose characters may be cut in two. */
struct word_run {
    std::string_view charset; /* empty: no word */
    char encoding = '\0';
    std::string bytes;
};

inline std::string taken_text(word_run &run, std::string_view fallback) {
    const word_run whole = std::exchange(run, {});
    return whole.charset.empty() ? std::string() : read_bytes(whole.bytes, whole.charset, fallback);
}

} // namespace detail
/** @endcond */

/**
 * @addtogroup zel_face_mail
 * @{
 */

/**
 * Reads a header value: folds are undone, encoded words (RFC 2047) of all known charsets are decoded, with or
 * without a language (RFC 2231, section 5). Neighbouring words lose the blanks between them; those of one
 * charset and encoding are joined before their characters are read. A word that cannot be read stays as it
 * stands, and a byte sequence that its charset does not allow becomes U+FFFD.
 */
inline std::string read_header(std::string_view value, std::string_view fallback = "windows-1252") {
    const std::string unfolded = detail::unfolded(value);
    const std::string_view line = unfolded;
    detail::word_run run;
    std::string text;
    std::size_t plain = 0, closing = 0;
    for (std::size_t at = line.find("=?"); at != std::string_view::npos; at = line.find("=?", at)) {
        const detail::encoded_word word = detail::word_at(line, at, closing);
        if (word.charset.empty()) {
            at = std::max(at + 2, word.end);
            continue;
        }
        const std::string_view between = line.substr(plain, at - plain);
        const bool are_neighbours = !run.charset.empty() && detail::is_all_blank(between);
        if (!are_neighbours || run.charset != word.charset || run.encoding != word.encoding)
            text += detail::taken_text(run, fallback);
        if (!are_neighbours)
            text += detail::read_unlabelled(between, fallback);
        run.charset = word.charset;
        run.encoding = word.encoding;
        run.bytes += word.bytes;
        plain = at = word.end;
    }
    text += detail::taken_text(run, fallback);
    return text += detail::read_unlabelled(line.substr(plain), fallback);
}

/** Reads a body whose transfer encoding is undone, in the charset of its label if that is known. */
inline std::string read_body(std::string_view charset, std::string_view bytes,
                             std::string_view fallback = "windows-1252") {
    return detail::read_bytes(bytes, known_charset(charset).value_or("us-ascii"), fallback);
}

/** @} */

/** @cond */
namespace detail {

/* A parameter as it stands in a header value, its quotes taken off. */
struct parameter {
    std::string_view name;
    std::string value;
};

inline std::string_view trimmed(std::string_view text) {
    const std::size_t first = std::min(text.find_first_not_of(" \t"), text.size());
    text.remove_prefix(first);
    return text.substr(0, text.find_last_not_of(" \t") + 1);
}

/* Before a backslash can stand for itself, as in a path of Windows, it has to escape something. */
inline std::string take_quoted(std::string_view &rest) {
    std::string text;
    for (rest.remove_prefix(1); !rest.empty() && rest.front() != '"'; rest.remove_prefix(1)) {
        if (rest.front() == '\\' && rest.size() > 1 && (rest[1] == '"' || rest[1] == '\\'))
            rest.remove_prefix(1);
        text += rest.front();
    }
    return text;
}

/* Takes what stands before the next ";". */
inline parameter take_parameter(std::string_view &rest) {
    const auto upto = [&](const char *marks) { return std::min(rest.find_first_of(marks), rest.size()); };
    parameter found = {trimmed(rest.substr(0, upto("=;"))), {}};
    rest.remove_prefix(upto("=;"));
    if (!rest.empty() && rest.front() == '=') {
        rest.remove_prefix(1);
        rest.remove_prefix(std::min(rest.find_first_not_of(" \t"), rest.size()));
        found.value = !rest.empty() && rest.front() == '"' ? take_quoted(rest)
                                                           : std::string(trimmed(rest.substr(0, upto(";"))));
    }
    rest.remove_prefix(std::min(upto(";") + 1, rest.size()));
    return found;
}

/* Of a parameter that RFC 2231 cut into "name*0*", "name*1" and so on; "name*" is the only part of its own.
 */
struct parameter_part {
    std::size_t number = 0;
    bool is_encoded = false;
    std::string value;
};

/* Reads what stands behind the name of a part, as in "*12*". */
inline std::optional<parameter_part> part_of(std::string_view suffix) {
    parameter_part part;
    if (suffix.empty() || suffix.front() != '*')
        return std::nullopt;
    suffix.remove_prefix(1);
    constexpr std::size_t longest_number = 9;
    const std::size_t digits = std::min(suffix.find_first_not_of("0123456789"), suffix.size());
    if (digits > longest_number)
        return std::nullopt;
    for (const char digit : suffix.substr(0, digits))
        part.number = part.number * 10 + static_cast<std::size_t>(digit - '0');
    suffix.remove_prefix(digits);
    part.is_encoded = digits == 0 || suffix == "*";
    return suffix.empty() || suffix == "*" ? std::optional(part) : std::nullopt;
}

/* Parts may come in any order; of two with one number the first holds. */
inline void sort_parts(std::vector<parameter_part> &parts) {
    std::stable_sort(parts.begin(), parts.end(),
                     [](const auto &part, const auto &other) { return part.number < other.number; });
    parts.erase(std::unique(parts.begin(), parts.end(),
                            [](const auto &part, const auto &other) { return part.number == other.number; }),
                parts.end());
}

/* Takes charset and language from the front of an encoded value, which has both or neither. */
inline std::string_view take_charset(std::string_view &value) {
    const std::size_t first = value.find('\'');
    const std::size_t second = first == std::string_view::npos ? first : value.find('\'', first + 1);
    if (second == std::string_view::npos)
        return "us-ascii";
    const std::string_view name = value.substr(0, first);
    value.remove_prefix(second + 1);
    return known_charset(name).value_or("us-ascii");
}

inline std::string read_parts(const std::vector<parameter_part> &parts, std::string_view fallback) {
    std::string bytes;
    std::string_view charset;
    for (const parameter_part &part : parts) {
        std::string_view value = part.value;
        if (part.is_encoded && &part == &parts.front())
            charset = take_charset(value);
        if (part.is_encoded)
            append_unescaped(bytes, value, '%');
        else
            bytes += value;
    }
    return charset.empty() ? read_header(bytes, fallback) : read_bytes(bytes, charset, fallback);
}

} // namespace detail
/** @endcond */

/**
 * @addtogroup zel_face_mail
 * @{
 */

/**
 * Reads a parameter of a header value such as that of Content-Disposition, in any form that mailers write:
 * whole or in numbered parts, percent-encoded with a charset (RFC 2231), in encoded words, or raw. The form
 * of RFC 2231 goes before the plain one.
 */
inline std::optional<std::string> read_parameter(std::string_view value, std::string_view name,
                                                 std::string_view fallback = "windows-1252") {
    const std::string unfolded = detail::unfolded(value);
    std::optional<std::string> plain;
    std::vector<detail::parameter_part> parts;
    for (std::string_view rest = unfolded; !rest.empty();) {
        detail::parameter found = detail::take_parameter(rest);
        if (!detail::same_name(found.name.substr(0, name.size()), name))
            continue;
        const std::string_view suffix = found.name.substr(name.size());
        if (suffix.empty() && !plain)
            plain = std::move(found.value);
        if (std::optional<detail::parameter_part> part = detail::part_of(suffix)) {
            part->value = std::move(found.value);
            parts.push_back(*std::move(part));
        }
    }
    detail::sort_parts(parts);
    if (!parts.empty())
        return detail::read_parts(parts, fallback);
    return plain ? std::optional(read_header(*plain, fallback)) : std::nullopt;
}

/** @} */

} // namespace face
} // namespace zel

#endif
