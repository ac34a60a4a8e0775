/**
 * @file zel_charsets.hpp
 * The charsets of mail, by the names that mailers write; zel.hpp includes this. It is the list that keeps
 * names from the wire out of the cache of converters.
 */

#ifndef ZEL_CHARSETS_HPP
#define ZEL_CHARSETS_HPP

#include "zel.hpp"

namespace zel {
inline namespace face {

/** @cond */
namespace detail {

struct charset_name {
    std::string_view name; /* in mail, in small letters */
    std::string_view charset;
};

/* Several are read as the larger charset of Windows or GB 18030 that mailers send under the name; what has no
   charset at all counts as US-ASCII. */
inline constexpr charset_name mail_charsets[] = {
    {"ansi_x3.4-1968", "us-ascii"},
    {"ascii", "us-ascii"},
    {"big5", "big5"},
    {"big5-hkscs", "big5-hkscs"},
    {"cn-big5", "big5"},
    {"cp1250", "windows-1250"},
    {"cp1251", "windows-1251"},
    {"cp1252", "windows-1252"},
    {"cp1253", "windows-1253"},
    {"cp1254", "windows-1254"},
    {"cp1255", "windows-1255"},
    {"cp1256", "windows-1256"},
    {"cp1257", "windows-1257"},
    {"cp1258", "windows-1258"},
    {"cp437", "cp437"},
    {"cp50220", "iso-2022-jp"},
    {"cp50221", "iso-2022-jp"},
    {"cp850", "cp850"},
    {"cp852", "cp852"},
    {"cp866", "cp866"},
    {"cp874", "windows-874"},
    {"cp932", "windows-31j"},
    {"cp936", "gb18030"},
    {"cp949", "windows-949"},
    {"cp950", "big5"},
    {"euc-jp", "euc-jp"},
    {"euc-kr", "windows-949"},
    {"gb18030", "gb18030"},
    {"gb2312", "gb18030"},
    {"gb_2312-80", "gb18030"},
    {"gbk", "gb18030"},
    {"hz-gb-2312", "hz-gb-2312"},
    {"iso-2022-cn", "iso-2022-cn"},
    {"iso-2022-jp", "iso-2022-jp"},
    {"iso-2022-jp-1", "iso-2022-jp-1"},
    {"iso-2022-jp-2", "iso-2022-jp-2"},
    {"iso-2022-jp-ms", "iso-2022-jp"},
    {"iso-2022-kr", "iso-2022-kr"},
    {"iso-8859-1", "windows-1252"},
    {"iso-8859-10", "iso-8859-10"},
    {"iso-8859-11", "windows-874"},
    {"iso-8859-13", "iso-8859-13"},
    {"iso-8859-14", "iso-8859-14"},
    {"iso-8859-15", "iso-8859-15"},
    {"iso-8859-2", "iso-8859-2"},
    {"iso-8859-3", "iso-8859-3"},
    {"iso-8859-4", "iso-8859-4"},
    {"iso-8859-5", "iso-8859-5"},
    {"iso-8859-6", "iso-8859-6"},
    {"iso-8859-7", "iso-8859-7"},
    {"iso-8859-8", "iso-8859-8"},
    {"iso-8859-8-e", "iso-8859-8"},
    {"iso-8859-8-i", "iso-8859-8"},
    {"iso-8859-9", "windows-1254"},
    {"iso8859-1", "windows-1252"},
    {"iso8859-15", "iso-8859-15"},
    {"iso8859-2", "iso-8859-2"},
    {"iso_8859-1", "windows-1252"},
    {"iso_8859-15", "iso-8859-15"},
    {"iso_8859-2", "iso-8859-2"},
    {"koi8-r", "koi8-r"},
    {"koi8-ru", "koi8-u"},
    {"koi8-u", "koi8-u"},
    {"ks_c_5601-1987", "windows-949"},
    {"ksc5601", "windows-949"},
    {"latin1", "windows-1252"},
    {"macintosh", "macintosh"},
    {"ms_kanji", "shift_jis"},
    {"shift-jis", "shift_jis"},
    {"shift_jis", "shift_jis"},
    {"sjis", "shift_jis"},
    {"tis-620", "windows-874"},
    {"unicode-1-1-utf-7", "utf-7"},
    {"unknown-8bit", "us-ascii"},
    {"us-ascii", "us-ascii"},
    {"utf-16", "utf-16"},
    {"utf-16be", "utf-16be"},
    {"utf-16le", "utf-16le"},
    {"utf-7", "utf-7"},
    {"utf-8", "utf-8"},
    {"utf8", "utf-8"},
    {"windows-1250", "windows-1250"},
    {"windows-1251", "windows-1251"},
    {"windows-1252", "windows-1252"},
    {"windows-1253", "windows-1253"},
    {"windows-1254", "windows-1254"},
    {"windows-1255", "windows-1255"},
    {"windows-1256", "windows-1256"},
    {"windows-1257", "windows-1257"},
    {"windows-1258", "windows-1258"},
    {"windows-31j", "windows-31j"},
    {"windows-874", "windows-874"},
    {"windows-936", "gb18030"},
    {"windows-949", "windows-949"},
    {"windows-950", "big5"},
    {"x-euc-jp", "euc-jp"},
    {"x-gbk", "gb18030"},
    {"x-mac-cyrillic", "x-mac-cyrillic"},
    {"x-mac-roman", "macintosh"},
    {"x-sjis", "shift_jis"},
};

constexpr char small(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

constexpr bool precedes(std::string_view name, std::string_view other) {
    std::size_t at = 0;
    while (at < name.size() && at < other.size() && small(name[at]) == small(other[at]))
        ++at;
    return at < other.size() && (at == name.size() || small(name[at]) < small(other[at]));
}

constexpr bool are_sorted() {
    for (std::size_t at = 1; at < std::size(mail_charsets); ++at)
        if (!precedes(mail_charsets[at - 1].name, mail_charsets[at].name))
            return false;
    return true;
}
static_assert(are_sorted());

constexpr bool same_name(std::string_view name, std::string_view other) {
    return name.size() == other.size() && !precedes(name, other) && !precedes(other, name);
}

} // namespace detail
/** @endcond */

/**
 * @addtogroup zel_face_mail
 * @{
 */

/**
 * Looks a charset of mail up, by the names that mailers write, in any case.
 *
 * @return the charset that text under the name is read in, as convert() takes it: "gb18030" for "GB2312"
 */
inline std::optional<std::string_view> known_charset(std::string_view name) {
    const auto *end = std::end(detail::mail_charsets);
    const auto *at = std::lower_bound(std::begin(detail::mail_charsets), end, name,
                                      [](const detail::charset_name &row, std::string_view sought) {
                                          return detail::precedes(row.name, sought);
                                      });
    if (at == end || detail::precedes(name, at->name) || !can_convert(at->charset, "utf-8"))
        return std::nullopt;
    return at->charset;
}

/** @} */

} // namespace face
} // namespace zel

#endif
