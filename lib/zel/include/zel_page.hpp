/**
 * @file zel_page.hpp
 * What a web front end needs beside mail; zel.hpp includes this. A page goes out in the language that its
 * reader likes best and in the charset that this language has on the web, and nothing is lost for it: what
 * the charset lacks is written as a character reference.
 */

#ifndef ZEL_PAGE_HPP
#define ZEL_PAGE_HPP

#include "zel_write.hpp"

#include <cstdint>

namespace zel {
inline namespace face {

/** @cond */
namespace detail {

/* Escape sequences have no place in HTML, and ASCII has to stand for itself there. */
inline bool is_for_pages(const std::string &charset) {
    constexpr std::string_view ascii =
        "\t\n\r !\"#$%&'()*+,-./0189:;<=>?@AZ[\\]^_`az{|}~"; /* with all marks */
    return known_charset(charset) && !begins(charset, "iso-2022-") && in_charset(ascii, charset) == ascii;
}

inline std::string character_reference(std::string_view character) {
    const std::uint32_t lead_bits = 0x7Fu >> character.size();
    std::uint32_t code = static_cast<unsigned char>(character[0]) & lead_bits;
    for (const char byte : character.substr(1))
        code = code << 6 | (static_cast<unsigned char>(byte) & 0x3F);
    return "&#" + std::to_string(code) + ';';
}

inline std::string with_references(std::string_view html, const std::string &charset) {
    const bool is_japanese = charset == "shift_jis" || charset == "euc-jp";
    std::map<std::string_view, std::string> written; /* a page has few characters, each of them often */
    std::string bytes;
    for (std::size_t size = 0; !html.empty(); html.remove_prefix(size)) {
        size = character_size(html);
        const std::string_view character = html.substr(0, size);
        if (size == 1) {
            bytes += character;
            continue;
        }
        const auto [row, is_new] = written.try_emplace(character);
        if (is_new)
            row->second = is_held(character, charset, is_japanese ? "iso-2022-jp" : charset)
                              ? in_charset(character, charset)
                              : character_reference(character);
        bytes += row->second;
    }
    return bytes;
}

/* Languages that browsers ask for by other names than the library's. */
inline constexpr std::string_view other_tags[][2] = {
    {"iw", "he"},       {"ji", "yi"},       {"nb", "no"},         {"nn", "no"},      {"zh-Hans", "zh-CN"},
    {"zh-SG", "zh-CN"}, {"zh-HK", "zh-TW"}, {"zh-Hant", "zh-TW"}, {"zh-MO", "zh-TW"}};

/* The language of a tag as the list of languages spells it, be it without the tag's last parts. */
inline std::optional<std::string> language_of(std::string_view tag) {
    for (; !tag.empty(); tag = tag.substr(0, tag.find('-') == tag.npos ? 0 : tag.rfind('-'))) {
        for (const auto &[other, ours] : other_tags)
            if (same_name(tag, other))
                tag = ours;
        if (const std::optional<LanguageID> id = language_id(tag))
            return ZEL_GetRFC1766LanguageID(*id);
    }
    return std::nullopt;
}

/* Thousandths, as of "0.25"; a value that is none counts as 0. */
inline int quality_of(std::string_view value) {
    int quality = 0, unit = 1000;
    for (const char digit : value.substr(0, 5)) {
        if (digit == '.' && unit == 100)
            continue;
        if (digit < '0' || digit > '9')
            break;
        quality += (digit - '0') * unit;
        unit /= 10;
    }
    return std::min(quality, 1000);
}

} // namespace detail
/** @endcond */

/**
 * @addtogroup zel_face_mail
 * @{
 */

/**
 * The language that a reader likes best of those in the list of languages, by the value of Accept-Language
 * (RFC 9110, section 12.5.4), of which it takes as much as accepted_languages(). A tag with a country or a
 * script stands for its language, "zh-HK" for "zh-TW".
 */
inline std::optional<std::string> preferred_language(std::string_view accepted) {
    std::optional<std::string> preferred;
    int highest = 0;
    for (const std::string &piece : accepted_languages(accepted)) {
        const std::string_view row = piece, tag = detail::trimmed(row.substr(0, row.find(';')));
        const std::size_t mark = std::min(row.find("q="), row.find("Q="));
        const int quality = mark == row.npos ? 1000 : detail::quality_of(row.substr(mark + 2));
        const std::optional<std::string> language = detail::language_of(tag);
        if (language && quality > highest) {
            preferred = language;
            highest = quality;
        }
    }
    return preferred;
}

/**
 * Text as HTML has it between tags and in attributes with quotes: the marks of HTML become character
 * references. What is no UTF-8 becomes U+FFFD, and so do controls but TAB, LF and CR, by which a charset
 * could change its state.
 */
inline std::string escape_html(std::string_view text) {
    constexpr std::string_view marks = "&<>\"'", blanks = "\t\n\r";
    constexpr const char *references[] = {"&amp;", "&lt;", "&gt;", "&quot;", "&#39;"};
    const std::string utf8 = detail::sound_utf8(text);
    std::string html;
    for (std::size_t at = 0; at < utf8.size(); ++at) {
        const char byte = utf8[at];
        const bool is_c1 = byte == '\xC2' && static_cast<unsigned char>(utf8[at + 1]) < 0xA0;
        const bool is_c0 =
            (static_cast<unsigned char>(byte) < ' ' && blanks.find(byte) == marks.npos) || byte == 0x7F;
        const std::size_t mark = marks.find(byte);
        if (mark != marks.npos)
            html += references[mark];
        else if (is_c0 || is_c1)
            html += "\xEF\xBF\xBD";
        else
            html += byte;
        at += is_c1 ? 1 : 0;
    }
    return html;
}

/** A web page as it goes out. */
struct page {
    std::string charset; /**< for the parameter of Content-Type */
    std::string bytes;   /**< the page */
};

/**
 * Writes a web page in the charset of web_charset(), with a character reference for each character that the
 * charset lacks, or that browsers read otherwise. The page is in UTF-8 where a bundle names a charset that
 * HTML cannot be written in: one without plain ASCII, or with escape sequences.
 *
 * @param language a tag
 * @param html HTML in UTF-8, whose text went through escape_html(); its scripts and style sheets are in ASCII
 */
inline page write_page(std::string_view language, std::string_view html) {
    if (!detail::is_utf8(html))
        throw error("a text that is not UTF-8");
    const std::string charset = web_charset(language);
    std::string name = charset;
    std::transform(name.begin(), name.end(), name.begin(), detail::small);
    if (name == "utf-8" || !detail::is_for_pages(name))
        return {"utf-8", std::string(html)};
    return {charset, detail::with_references(html, name)};
}

/** @} */

} // namespace face
} // namespace zel

#endif
