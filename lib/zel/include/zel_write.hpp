/**
 * @file zel_write.hpp
 * Writers of what every reader understands; zel.hpp includes this. Text goes out in the mail charset of its
 * language where that holds all of it, and in UTF-8 elsewhere. Nothing is lost, no label lies, and no text
 * becomes a header line of its own.
 */

#ifndef ZEL_WRITE_HPP
#define ZEL_WRITE_HPP

#include "zel_read.hpp"

namespace zel {
inline namespace face {

/** @cond */
namespace detail {

struct charset_dispute {
    std::string_view charset;
    std::u16string_view characters; /* in the order of their codes */
};

/* Characters of which the decoders of the world make different ones. A charset that is neither here nor of
   single bytes is not written. */
inline constexpr charset_dispute disputes[] = {
    {"big5", u"¯‧€∕⊕⊙═║╒╓╔╕╖╗╘╙╚╛╜╝╞╟╠╡╢╣╤╥╦╧╨╩╪╫╬▓墻嫺恒碁粧裏銹﹑﹨～￠￡￥"},
    {"euc-kr", u"\u3164"}, // the filler, which cannot be seen
    {"gb2312", u""},
    {"iso-2022-jp", u"№℡ⅠⅡⅢⅣⅤⅥⅦⅧⅨⅩ∑∟∮⊿①②③④⑤⑥⑦⑧⑨⑩⑪⑫⑬⑭⑮⑯⑰⑱⑲⑳〝〟㈱㈲㈹㊤㊥㊦㊧㊨㌃㌍㌔㌘㌢㌣㌦㌧㌫㌶㌻㍉㍊㍍㍑"
                    u"㍗㍻㍼㍽㍾㎎㎏㎜㎝㎞㎡㏄㏍￠￡￢"},
    {"tis-620", u"\u00A0–—‘’“”•…€"},
    {"windows-1253", u"ª"},
};

constexpr bool are_in_order() {
    for (const charset_dispute &dispute : disputes)
        for (std::size_t at = 1; at < dispute.characters.size(); ++at)
            if (dispute.characters[at - 1] >= dispute.characters[at])
                return false;
    return true;
}
static_assert(are_in_order());

/* Of UTF-8 up to three bytes. */
inline char16_t code_of(std::string_view character) {
    unsigned code = static_cast<unsigned char>(character[0]) & (character.size() == 2 ? 0x1F : 0x0F);
    for (const char byte : character.substr(1))
        code = code << 6 | (static_cast<unsigned char>(byte) & 0x3F);
    return static_cast<char16_t>(code);
}

/* C1 controls, characters of private use and U+FFFD are nobody's, or everybody's own. */
inline bool is_disputed(std::string_view character, std::u16string_view disputed) {
    if (character.size() == 1 || character.size() > 3)
        return false;
    const char16_t code = code_of(character);
    return code < 0xA0 || (code >= 0xE000 && code < 0xF900) || code == 0xFFFD ||
           std::binary_search(disputed.begin(), disputed.end(), code);
}

inline bool is_agreed_on(std::string_view text, std::string_view charset) {
    const auto *row =
        std::find_if(std::begin(disputes), std::end(disputes),
                     [&](const charset_dispute &dispute) { return dispute.charset == charset; });
    const bool is_single =
        begins(charset, "iso-8859-") || begins(charset, "koi8-") || begins(charset, "windows-125");
    if (row == std::end(disputes) && !is_single)
        return false;
    const std::u16string_view disputed = row == std::end(disputes) ? u"" : row->characters;
    for (; !text.empty(); text.remove_prefix(character_size(text)))
        if (is_disputed(text.substr(0, character_size(text)), disputed))
            return false;
    return true;
}

inline std::string in_charset(std::string_view text, const std::string &charset) {
    return charset == "us-ascii" || charset == "utf-8" ? std::string(text)
                                                       : converted(text, "utf-8", charset.c_str());
}

/* Whether every reader gets a text back from a charset; `row` names that of its disputes. */
inline bool is_held(std::string_view text, const std::string &charset, std::string_view row) {
    const std::optional<std::string_view> reader = known_charset(charset);
    return gf_ZELStatus == ZEL_STATUS_INITIALIZED && reader && is_agreed_on(text, row) &&
           read_bytes(in_charset(text, charset), *reader, "us-ascii") == text;
}

/* The charset that a text goes out in: that of its language if it comes back from there. */
inline std::string charset_of(std::string_view language, std::string_view text) {
    if (!is_utf8(text))
        throw error("a text that is not UTF-8");
    if (is_ascii(text))
        return "us-ascii";
    std::string charset = mail_charset(language);
    std::transform(charset.begin(), charset.end(), charset.begin(), small);
    return is_held(text, charset, charset) ? charset : "utf-8";
}

/* Letters, digits and some marks. */
constexpr bool is_among(char byte, std::string_view marks) {
    return (byte >= '0' && byte <= '9') || (small(byte) >= 'a' && small(byte) <= 'z') ||
           marks.find(byte) != std::string_view::npos;
}

inline constexpr std::string_view word_marks = "!*+-/"; /* of a Q word that may stand in a phrase */
inline constexpr std::string_view attribute_marks = "!#$&+-.^_`|~";   /* of RFC 2231 */
inline constexpr std::string_view atom_marks = "!#$%&'*+-/=?^_`{|}~"; /* of RFC 5322 */
inline constexpr std::string_view visible_marks = "!\"#$%&'()*+,-./:;<=>?@[\\]^_`{|}~";
inline constexpr std::string_view quoted_marks =
    " !#$%&'()*+,-./:;<=>?@[]^_`{|}~"; /* that no backslash escapes */

/* Whether a text can stand as it is: nothing in it begins an encoded word. */
inline bool is_plain(std::string_view text, std::string_view marks) {
    return text.find("=?") == std::string_view::npos &&
           std::all_of(text.begin(), text.end(), [&](char byte) { return is_among(byte, marks); });
}

inline void append_escape(std::string &text, char mark, char byte) {
    const auto value = static_cast<unsigned char>(byte);
    text.append({mark, "0123456789ABCDEF"[value >> 4], "0123456789ABCDEF"[value & 15]});
}

inline std::string escaped(std::string_view bytes, char mark, std::string_view marks) {
    std::string text;
    for (const char byte : bytes)
        if (is_among(byte, marks))
            text += byte;
        else if (byte == ' ' && mark == '=')
            text += '_';
        else
            append_escape(text, mark, byte);
    return text;
}

/* Base64 in one line. */
inline std::string base64(std::string_view bytes) {
    std::string text = encode_base64(bytes);
    const auto is_break = [](char byte) { return byte == '\r' || byte == '\n'; };
    text.erase(std::remove_if(text.begin(), text.end(), is_break), text.end());
    return text;
}

/* The beginning of a text, as it is written: 'B' or 'Q' is the encoding of an encoded word, '%' that of a
   part of a parameter. */
struct piece {
    std::size_t size = 0;
    char encoding = '\0';
    std::string encoded;
};

inline piece encoded_piece(std::string_view text, const std::string &charset, char encoding) {
    const std::string bytes = in_charset(text, charset);
    return {text.size(), encoding,
            encoding == 'B'   ? base64(bytes)
            : encoding == 'Q' ? escaped(bytes, '=', word_marks)
                              : escaped(bytes, '%', attribute_marks)};
}

/* As many characters as some room takes. A B word that another follows has no padding, because readers that
   join the words stop there. */
inline piece fitting(std::string_view text, std::size_t room, const std::string &charset, char encoding) {
    std::vector<std::size_t> ends;
    for (std::size_t at = 0; at < text.size() && ends.size() < room;)
        ends.push_back(at += character_size(text.substr(at)));
    const auto encoded_to = [&](std::size_t end) {
        return encoded_piece(text.substr(0, end), charset, encoding);
    };
    auto behind = std::partition_point(
        ends.begin(), ends.end(), [&](std::size_t end) { return encoded_to(end).encoded.size() <= room; });
    for (; behind != ends.begin(); --behind) {
        piece found = encoded_to(behind[-1]);
        if (encoding != 'B' || found.encoded.back() != '=' || found.size == text.size())
            return found;
    }
    return {};
}

/* The word that takes more of the text or, if both take the same, the shorter one. */
inline piece fitting_word(std::string_view text, std::size_t room, const std::string &charset) {
    const std::size_t frame = charset.size() + 7; /* as of "=?", "?B?" and "?=" */
    if (room <= frame)
        return {};
    piece in_b = fitting(text, room - frame, charset, 'B'), in_q = fitting(text, room - frame, charset, 'Q');
    const bool is_q =
        in_q.size > in_b.size || (in_q.size == in_b.size && in_q.encoded.size() <= in_b.encoded.size());
    return is_q ? in_q : in_b;
}

inline constexpr std::size_t longest_line = 76, longest_word = 75;

/* A header value as it grows: words between blanks, some of which begin a line. */
struct folded_value {
    std::string text;
    std::size_t column; /* of the line that it ends with */
    bool is_empty = true;
};

inline std::size_t room_in(const folded_value &value) {
    const std::size_t taken = value.column + (value.is_empty ? 0 : 1);
    return taken < longest_line ? longest_line - taken : 0;
}

inline void put_word(folded_value &value, std::string_view word) {
    if (!value.is_empty) {
        const bool is_next = word.size() <= room_in(value);
        value.text += is_next ? " " : "\r\n ";
        value.column = is_next ? value.column + 1 : 1;
    }
    value.text += word;
    value.column += word.size();
    value.is_empty = false;
}

/* Puts encoded words: as few as the rest of the line and the next ones take. */
inline void put_encoded(folded_value &value, std::string_view text, const std::string &charset) {
    while (!text.empty()) {
        piece word = fitting_word(text, std::min(room_in(value), longest_word), charset);
        if (word.size < text.size() && !value.is_empty) {
            piece on_next_line = fitting_word(text, longest_word, charset);
            if (word.size == 0 || on_next_line.size == text.size())
                word = std::move(on_next_line);
        }
        put_word(value, "=?" + charset + '?' + word.encoding + '?' + word.encoded + "?=");
        text.remove_prefix(word.size);
    }
}

/* A line break becomes a blank. */
inline std::string on_one_line(std::string_view text) {
    std::string line;
    for (std::size_t at = 0; at < text.size(); ++at) {
        at += text.substr(at, 2) == "\r\n" ? 1 : 0;
        line += text[at] == '\r' || text[at] == '\n' ? ' ' : text[at];
    }
    return line;
}

/* The next blank that stands alone between two words. */
inline std::size_t end_of_word(std::string_view text, std::size_t at) {
    while ((at = text.find(' ', at + 1)) != std::string_view::npos)
        if (!is_blank(text[at - 1]) && at + 1 < text.size() && !is_blank(text[at + 1]))
            return at;
    return text.size();
}

/* Behind a long name on its line a value begins on the next, or an encoded word might not fit. */
inline folded_value value_behind(std::size_t column) {
    constexpr std::size_t longest_name = 30;
    return column > longest_name ? folded_value{"\r\n ", 1} : folded_value{"", column};
}

/* Encoded words do not say "us-ascii": readers that join texts of one charset would join plain words to them.
 */
inline std::string charset_of_words(std::string_view language, std::string_view text) {
    return is_ascii(text) ? "utf-8" : charset_of(language, text);
}

/* Words that stand as they are, and runs of all others, with the blanks between them, as encoded words. */
inline std::string words_of(std::string_view language, std::string_view line, std::size_t column,
                            std::string_view marks) {
    const std::string charset = charset_of_words(language, line);
    folded_value value = value_behind(column);
    std::size_t run = 0; /* what is not yet written begins here */
    for (std::size_t at = 0, end = 0; at < line.size(); at = end + 1) {
        end = end_of_word(line, at);
        const std::string_view word = line.substr(at, end - at);
        if (!is_plain(word, marks) || word.size() > (at == 0 ? room_in(value) : longest_word))
            continue;
        if (run < at)
            put_encoded(value, line.substr(run, at - 1 - run), charset);
        put_word(value, word);
        run = end + 1;
    }
    if (run < line.size())
        put_encoded(value, line.substr(run), charset);
    return value.is_empty ? "" : value.text;
}

inline std::string with_crlf(std::string_view text) {
    std::string lines;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '\n' && (at == 0 || text[at - 1] != '\r'))
            lines += '\r';
        lines += text[at];
    }
    return lines;
}

/* Whether bytes can go as they are: 7-bit lines of at most 998, none of which a mailbox would mark. */
inline bool is_safe(std::string_view bytes) {
    std::size_t start = 0;
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        const bool is_end = begins(bytes.substr(at, 2), "\r\n");
        if ((bytes[at] & 0x80) || bytes[at] == '\0' || (bytes[at] == '\r' && !is_end) ||
            (at - start == 998 && !is_end) || (at == start && begins(bytes.substr(at, 5), "From ")))
            return false;
        if (is_end)
            start = ++at + 1;
    }
    return true;
}

/* Blanks do not end a line, nor does anything begin one that a mailbox or SMTP would mark. */
inline std::string quoted_printable(std::string_view bytes) {
    std::string text;
    std::size_t start = 0; /* of the line */
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        const std::string_view rest = bytes.substr(at);
        if (begins(rest, "\r\n")) {
            text += "\r\n";
            start = text.size();
            ++at;
            continue;
        }
        if (text.size() - start > longest_line - 4) {
            text += "=\r\n";
            start = text.size();
        }
        const bool ends_line = rest.size() == 1 || begins(rest.substr(1, 2), "\r\n");
        const bool is_marked = text.size() == start && (rest[0] == '.' || begins(rest, "From "));
        if (rest[0] != '=' && !is_marked &&
            (is_among(rest[0], visible_marks) || (is_blank(rest[0]) && !ends_line)))
            text += rest[0];
        else
            append_escape(text, '=', rest[0]);
    }
    return text;
}

} // namespace detail
/** @endcond */

/**
 * @addtogroup zel_face_mail
 * @{
 */

/**
 * Writes a header value. Words of visible ASCII stay as they are; the others, and blanks that are not single
 * and between words, go into encoded words (RFC 2047) of at most 75 characters, each of which holds whole
 * characters. Lines are at most 76 long, so a plain word that is longer is encoded. A line break becomes a
 * blank: no text can begin a header line of its own. Other controls are encoded.
 *
 * @param language a tag; text that its mail charset does not hold goes out in UTF-8, and so does all text
 * that is not ASCII under an unknown one
 * @param text the text, in UTF-8 and without NUL
 * @param column characters before the value on its line, as of "Subject: "; above 30 the value begins with a
 * fold
 */
inline std::string write_header(std::string_view language, std::string_view text, std::size_t column = 9) {
    const std::string line = detail::on_one_line(detail::terminated(text));
    return detail::words_of(language, line, column, detail::visible_marks);
}

/**
 * Writes a phrase, as the name before an address: as it is if it takes no quotes (RFC 5322, section 3.2.3)
 * and its line has room for it, else all of it in encoded words, as of write_header(). Readers agree on no
 * mixture of both.
 */
inline std::string write_phrase(std::string_view language, std::string_view text, std::size_t column = 9) {
    std::string line = detail::on_one_line(detail::terminated(text));
    if (detail::words_of(language, line, column, detail::atom_marks) == line)
        return line;
    detail::folded_value value = detail::value_behind(column);
    detail::put_encoded(value, line, detail::charset_of_words(language, line));
    return value.text;
}

/**
 * Writes a parameter with its name, to be put behind a ";" and a fold: quoted if it is short and ASCII, else
 * percent-encoded with its charset (RFC 2231), in numbered parts where a line does not hold it. Controls are
 * encoded, NUL is refused.
 */
inline std::string write_parameter(std::string_view language, std::string_view name, std::string_view text) {
    const std::string key(name), value = detail::terminated(text);
    if (key.empty() || !detail::is_plain(key, detail::attribute_marks))
        throw error("a name that no parameter has");
    const std::string charset = detail::charset_of(language, value), label = charset + "''";
    constexpr std::size_t longest_part =
        detail::longest_line - 2; /* between the blank of the fold and a ";" */
    std::string line = key + "=\"" + value + '"';
    if (line.size() <= longest_part && detail::is_plain(value, detail::quoted_marks))
        return line;
    line = key + "*=" + label + detail::encoded_piece(value, charset, '%').encoded;
    if (line.size() <= longest_part)
        return line;
    line.clear();
    std::string_view rest = value;
    for (std::size_t number = 0; !rest.empty(); ++number) {
        const std::string part = key + '*' + std::to_string(number) + "*=" + (number ? "" : label);
        detail::piece piece =
            detail::fitting(rest, longest_part - std::min(part.size(), longest_part), charset, '%');
        if (piece.size == 0) /* behind a name that is too long for a line */
            piece = detail::encoded_piece(rest.substr(0, detail::character_size(rest)), charset, '%');
        line += (number ? ";\r\n " : "") + part + piece.encoded;
        rest.remove_prefix(piece.size);
    }
    return line;
}

/** A body as it goes out, and what its header fields say of it. */
struct body {
    std::string charset;           /**< for the parameter of Content-Type */
    std::string transfer_encoding; /**< for Content-Transfer-Encoding */
    std::string bytes;             /**< in lines that end in CR LF */
};

/**
 * Writes a body: its lines end in CR LF, as they do not need to in the text. It goes out as it is where every
 * way takes it, else in quoted-printable or Base64, whichever is shorter.
 */
inline body write_body(std::string_view language, std::string_view text) {
    const std::string charset = detail::charset_of(language, text);
    const std::string bytes = detail::in_charset(detail::with_crlf(text), charset);
    if (detail::is_safe(bytes))
        return {charset, "7bit", bytes};
    std::string quoted = detail::quoted_printable(bytes), base64 = encode_base64(bytes);
    return quoted.size() <= base64.size() ? body{charset, "quoted-printable", std::move(quoted)}
                                          : body{charset, "base64", std::move(base64)};
}

/** @} */

} // namespace face
} // namespace zel

#endif
