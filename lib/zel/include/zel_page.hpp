/**
 * @file zel_page.hpp
 * The writer of web pages; zel.hpp includes this. A page goes out in the charset that its readers' language
 * has on the web, and nothing is lost for it: what the charset lacks is written as a character reference.
 */

#ifndef ZEL_PAGE_HPP
#define ZEL_PAGE_HPP

#include "zel_write.hpp"

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

} // namespace detail
/** @endcond */

/**
 * @addtogroup zel_face_mail
 * @{
 */

/** A web page as it goes out. */
struct page {
    std::string charset; /**< for the parameter of Content-Type */
    std::string bytes;
};

/**
 * Writes a web page in the charset of web_charset(), with a character reference for each character that the
 * charset lacks, or that browsers read otherwise. The page is in UTF-8 where a bundle names a charset that
 * HTML cannot be written in: one without plain ASCII, or with escape sequences.
 *
 * @param language a tag
 * @param html HTML in UTF-8, whose text is escaped; its scripts and style sheets are in ASCII
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
