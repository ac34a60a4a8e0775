/**
 * @file zel.hpp
 * The C++ face of libzel: std::string_view in, std::string out, over the functions of zel.h.
 *
 *     #include <zel.hpp>
 *
 *     int main() {
 *         const zel::library library("/usr/local/share/zel");
 *         std::puts(zel::read_header("=?iso-8859-1?Q?Caf=E9?=").c_str()); // Café
 *     }
 *
 * It takes C++17, the standard library and zel.h, and has no code but its headers. Sizes, terminators,
 * writable copies and the CR LF that may end a value of Q words are dealt with inside. Threads, languages,
 * charsets and the status word are as zel.h has them. Where a charset may be left out it is UTF-8.
 *
 * **Errors.** What cannot be done throws zel::error, whose text says why: a text with a NUL inside where the
 * library takes none, a text of 2 GiB and more, charsets without a converter, whatever zel.h gives a null or
 * a negative result for. That holds for every function, and memory that runs out throws std::bad_alloc. The
 * functions named read_ take whatever the Internet sends: they throw for its length, and for a fallback that
 * has no converter, but never for what it holds. A question that has no answer gives an empty std::optional,
 * which is no error.
 */

#ifndef ZEL_HPP
#define ZEL_HPP

#include "zel.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <iterator>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zel {
inline namespace face {

/** What every function throws that cannot do its work. */
class error : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/** @cond */
namespace detail {

inline std::int32_t length_of(std::string_view text) {
    if (text.size() > std::size_t{std::numeric_limits<std::int32_t>::max()} - 1)
        throw error("a text of 2 GiB and more");
    return static_cast<std::int32_t>(text.size());
}

/* A copy that the library may read up to its NUL, and write to. */
inline std::string terminated(std::string_view text) {
    length_of(text);
    if (text.find('\0') != std::string_view::npos)
        throw error("a NUL inside of a text that may hold none");
    return std::string(text);
}

/* The null by which zel.h asks for its default. */
inline const char *or_null(const std::string &text) {
    return text.empty() ? nullptr : text.c_str();
}

struct release {
    void operator()(char *text) const { ZEL_Free(text); }
};

inline std::string taken(char *text) {
    const std::unique_ptr<char, release> owner(text);
    if (!owner)
        throw error("no result, for want of a converter, a locale or memory");
    return owner.get();
}

inline std::string buffer_of(std::int64_t size) {
    if (size > std::numeric_limits<std::int32_t>::max())
        throw error("a result of 2 GiB and more");
    return std::string(static_cast<std::size_t>(size), '\0');
}

inline std::int32_t checked(std::int32_t result) {
    if (result < 0)
        throw error(result == -5   ? "no converter between the charsets"
                    : result == -2 ? "an unknown language"
                                   : "nothing to encode, or no memory for it");
    return result;
}

/* Calls for the size, whose terminator some functions do not count, then for the text. */
template <class Call>
std::string in_two_calls(Call call) {
    char none = '\0';
    std::string text = buffer_of(std::int64_t{checked(call(&none, -1))} + 1);
    text.resize(static_cast<std::size_t>(checked(call(text.data(), static_cast<std::int32_t>(text.size())))));
    return text;
}

/* By charsets that have a converter. The size that the library estimates leaves out what a stateful charset
   needs for its escape sequences, and a result that does not fit would come out unconverted. */
inline std::string converted(std::string_view text, const char *from_charset, const char *to_charset) {
    const std::int32_t length = length_of(text);
    if (length == 0)
        return {};
    std::string result = buffer_of(
        std::int64_t{ZEL_GetResultBufferSize(text.data(), length, from_charset, to_charset)} + length + 64);
    result.resize(
        static_cast<std::size_t>(ZEL_ConvertBuffer(from_charset, to_charset, text.data(), length,
                                                   result.data(), static_cast<std::int32_t>(result.size()))));
    return result;
}

} // namespace detail
/** @endcond */

/**
 * @defgroup zel_face_lifecycle C++: start and stop
 * @{
 */

/** Starts the library, and stops it for good at the end of its scope, which outlives all that uses it. */
class library {
public:
    /**
     * @param bundles_path directory of the bundle "encbylang"; empty: the server's root, or no bundle
     * @param server_root the server's root directory, for find_directory(); may be empty
     * @param pass_8bit a stray byte of 0x80 or above in 7-bit text is kept, instead of becoming "?"
     */
    explicit library(std::string_view bundles_path = {}, std::string_view server_root = {},
                     bool pass_8bit = false) {
        if (gf_ZELStatus != ZEL_STATUS_NOT_INITIALIZED)
            throw error("the library starts once a process");
        const std::string bundles = detail::terminated(bundles_path), root = detail::terminated(server_root);
        const ZELConfig config = {pass_8bit, 1, 0,
                                  bundles.empty() && !root.empty() ? nullptr : bundles.c_str()};
        ZEL_Initialize(detail::or_null(root), &config);
    }
    ~library() { ZEL_Terminate(); }
    library(const library &) = delete;
    library &operator=(const library &) = delete;
};

/** The name of a localisation directory as it is spelled on disk. */
inline std::optional<std::string> find_directory(std::string_view name) {
    const char *found = check_l10n_dir(detail::terminated(name).c_str());
    return found ? std::optional<std::string>(found) : std::nullopt;
}

/** @} */

/**
 * @defgroup zel_face_conversion C++: conversion between charsets
 * @{
 */

/** Tells whether text can be converted between two charsets. */
inline bool can_convert(std::string_view from_charset, std::string_view to_charset) {
    return ZEL_EncodingConverterExists(detail::terminated(from_charset).c_str(),
                                       detail::terminated(to_charset).c_str()) != 0;
}

/**
 * Converts a text, which may hold NUL bytes. What the target lacks, and what the source does not allow, comes
 * out as ICU's substitute. A name that comes from the wire is first looked up by known_charset().
 */
inline std::string convert(std::string_view text, std::string_view from_charset,
                           std::string_view to_charset) {
    const std::string from = detail::terminated(from_charset), to = detail::terminated(to_charset);
    if (!ZEL_EncodingConverterExists(from.c_str(), to.c_str()))
        throw error("no converter from " + from + " to " + to);
    return detail::converted(text, from.c_str(), to.c_str());
}

/** Text in the local charset, which the start has settled, as UTF-8. */
inline std::string local_to_utf8(std::string_view text) {
    return detail::taken(ZEL_LocalToUTF8(detail::terminated(text).c_str(), nullptr));
}

/** UTF-8 in the local charset. */
inline std::string utf8_to_local(std::string_view text) {
    return detail::taken(ZEL_UTF8ToLocal(detail::terminated(text).c_str(), nullptr));
}

/** The form of a name in IMAP (RFC 3501, section 5.1.3). */
inline std::string encode_mailbox(std::string_view name) {
    return detail::taken(ZEL_LocalToMUTF7(detail::terminated(name).c_str(), "UTF-8"));
}

/** The name that a form of IMAP stands for. */
inline std::string decode_mailbox(std::string_view name) {
    return detail::taken(ZEL_MUTF7ToLocal(detail::terminated(name).c_str(), "UTF-8"));
}

/** ASCII with escapes of a backslash, "u" and four digits; with `controls` for those too but TAB and LF. */
inline std::string escape_unicode(std::string_view text, bool controls = false) {
    return detail::taken(ZEL_UTF8ToEscapedUnicode(detail::terminated(text).c_str(), controls));
}

/** Converts by a direct converter of zel.h, as in `convert_directly(eucjp2jis, text)`. */
inline std::string convert_directly(std::int32_t (*converter)(const char *, std::int32_t, char *,
                                                              std::int32_t),
                                    std::string_view text) {
    const std::string from = detail::terminated(text);
    const std::int32_t length = detail::length_of(from);
    std::string to = detail::buffer_of(std::int64_t{length} * 5 + 4);
    to.resize(static_cast<std::size_t>(
        converter(from.c_str(), length, to.data(), static_cast<std::int32_t>(to.size()))));
    return to;
}

/** @} */

/**
 * @defgroup zel_face_languages C++: languages and their charsets
 * @{
 */

/** The tags of all languages, in the order of their ids. */
inline std::vector<std::string> languages() {
    std::vector<std::string> tags;
    std::string_view list = ZEL_GetAvailableLanguageList();
    list = list.substr(1, list.size() - 2);
    for (std::size_t comma = 0; comma != std::string_view::npos; list.remove_prefix(comma + 1)) {
        comma = list.find(',');
        tags.emplace_back(list.substr(0, comma));
        if (comma == std::string_view::npos)
            break;
    }
    return tags;
}

/** The id of a tag of the list. */
inline std::optional<LanguageID> language_id(std::string_view language) {
    const LanguageID id = ZEL_GetIntLanguageID_strict(detail::terminated(language).c_str());
    return id > 0 ? std::optional<LanguageID>(id) : std::nullopt;
}

/** Tells the double-byte languages. */
inline bool is_double_byte(std::string_view language) {
    return ZEL_IsDBCSLanguage(ZEL_GetIntLanguageID(detail::terminated(language).c_str())) != 0;
}

/** The first 16 pieces of a list such as the value of Accept-Language; quality values stay on them, as
 * preferred_language() reads them. */
inline std::vector<std::string> accepted_languages(std::string_view list) {
    char rows[16][18];
    const std::int32_t count = ZEL_AcceptLangList(detail::terminated(list).c_str(), rows);
    return std::vector<std::string>(rows, rows + count);
}

/** A locale as ICU spells it. */
inline std::string normalized_locale(std::string_view locale) {
    std::string text = detail::terminated(locale);
    char *at = text.data();
    ZEL_NormalizeLocale(&at);
    return text;
}

/** The charset that web pages of a language are written in. */
inline std::string web_charset(std::string_view language) {
    return ZEL_HTTPContentCharset(detail::terminated(language).c_str());
}

/** The charset of mail in a language; of a text, if there is one, "us-ascii" where it is all 7-bit. */
inline std::string mail_charset(std::string_view language, std::string_view text = {}) {
    return ZEL_InternetMessageCharset(detail::terminated(language).c_str(), detail::terminated(text).c_str());
}

/** Tells whether decode_header() reads words in a charset under a language. */
inline bool admits(std::string_view language, std::string_view charset) {
    return ZEL_IsInternetMessageKnownCharset(detail::terminated(language).c_str(),
                                             detail::terminated(charset).c_str()) != 0;
}

/** The transfer encoding of what encode_body() makes. */
inline std::string transfer_encoding(std::string_view language, std::string_view text,
                                     bool qp_for_8bit = true) {
    return ZEL_InternetMessageContentTransferEncoding(detail::terminated(language).c_str(),
                                                      detail::terminated(text).c_str(), qp_for_8bit);
}

/** A string of an ICU resource bundle. */
inline std::optional<std::string> bundle_message(UResourceBundle *bundle, std::string_view key) {
    char *found = resourceBundleGetUTF8Message(bundle, detail::terminated(key).c_str());
    return found ? std::optional<std::string>(detail::taken(found)) : std::nullopt;
}

/** The text of a service error. One thread at a time may call this. */
inline std::string service_error(std::int32_t code) {
    return ZEL_ServiceErrorStringInUTF8(code);
}

/** @} */

/**
 * @defgroup zel_face_messages C++: messages, as zel.h reads and writes them
 * Under the rules of a language: a word in a charset that it does not admit is not read, a character that its
 * charset lacks is written as a substitute. See read_header() and write_header() for mail at large.
 * @{
 */

/** Base64 in lines of 68 characters. */
inline std::string encode_base64(std::string_view bytes) {
    const std::int32_t length = detail::length_of(bytes);
    return detail::in_two_calls([&](char *to_buf, std::int32_t to_size) {
        return ZEL_ApplyBase64Encoding(bytes.data(), length, to_buf, to_size);
    });
}

/** ZEL_LocalToInternetMessageHeader() without the line break that may end its result. */
inline std::string encode_header(std::string_view language, std::string_view text,
                                 std::string_view charset = "UTF-8") {
    const std::string tag = detail::terminated(language), from = detail::terminated(charset);
    std::string copy = detail::terminated(text);
    std::string value = detail::in_two_calls([&](char *to_buf, std::int32_t to_size) {
        return ZEL_LocalToInternetMessageHeader(tag.c_str(), from.c_str(), copy.data(), to_buf, to_size);
    });
    if (value.size() > 4 && value.compare(value.size() - 4, 4, "?=\r\n") == 0)
        value.resize(value.size() - 2);
    return value;
}

/** ZEL_InternetMessageHeaderToLocal(). */
inline std::string decode_header(std::string_view language, std::string_view value,
                                 std::string_view charset = "UTF-8") {
    const std::string tag = detail::terminated(language), to = detail::terminated(charset);
    std::string copy = detail::terminated(value);
    return detail::in_two_calls([&](char *to_buf, std::int32_t to_size) {
        return ZEL_InternetMessageHeaderToLocal(tag.c_str(), copy.data(), to.c_str(), to_buf, to_size);
    });
}

/** ZEL_LocalToRFC2231(). */
inline std::string encode_parameter(std::string_view language, std::string_view name, std::string_view text,
                                    std::string_view charset = "UTF-8") {
    const std::string tag = detail::terminated(language), key = detail::terminated(name),
                      from = detail::terminated(charset), copy = detail::terminated(text);
    return detail::in_two_calls([&](char *to_buf, std::int32_t to_size) {
        return ZEL_LocalToRFC2231(tag.c_str(), key.c_str(), from.c_str(), copy.c_str(), to_buf, to_size);
    });
}

/** ZEL_RFC2231ToLocal(), of a charset, a language and a text between apostrophes. */
inline std::string decode_parameter(std::string_view value, std::string_view charset = "UTF-8") {
    const std::string copy = detail::terminated(value), to = detail::terminated(charset);
    return detail::in_two_calls([&](char *to_buf, std::int32_t to_size) {
        return ZEL_RFC2231ToLocal(nullptr, copy.c_str(), to.c_str(), to_buf, to_size);
    });
}

/** ZEL_LocalToInternetMessageBody(). An empty body stays empty. */
inline std::string encode_body(std::string_view language, std::string_view text,
                               std::string_view charset = "UTF-8", bool qp_for_8bit = true) {
    if (text.empty())
        return {};
    const std::string tag = detail::terminated(language), from = detail::terminated(charset),
                      copy = detail::terminated(text);
    return detail::in_two_calls([&](char *to_buf, std::int32_t to_size) {
        return ZEL_LocalToInternetMessageBody(tag.c_str(), from.c_str(), copy.c_str(), to_buf, to_size,
                                              qp_for_8bit);
    });
}

/** ZEL_InternetMessageBodyLocalToLocalLen(), of a body whose transfer encoding is undone. */
inline std::string decode_body(std::string_view language, std::string_view from_charset,
                               std::string_view bytes, std::string_view to_charset = "UTF-8") {
    const std::string tag = detail::terminated(language), from = detail::terminated(from_charset),
                      to = detail::terminated(to_charset);
    const std::int32_t length = detail::length_of(bytes);
    const char *body = length ? bytes.data() : "";
    return detail::in_two_calls([&](char *to_buf, std::int32_t to_size) {
        return ZEL_InternetMessageBodyLocalToLocalLen(tag.c_str(), from.c_str(), 0, body, length, to.c_str(),
                                                      to_buf, to_size);
    });
}

/** ZEL_LocalToVCard21(): the value of a property, in the charset of web_charset(). */
inline std::string encode_vcard(std::string_view language, std::string_view text,
                                std::string_view charset = "UTF-8") {
    const std::string tag = detail::terminated(language), from = detail::terminated(charset);
    if (!ZEL_EncodingConverterExists(from.c_str(), ZEL_HTTPContentCharset(tag.c_str())))
        throw error("no converter from " + from);
    return detail::taken(ZEL_LocalToVCard21(tag.c_str(), from.c_str(), detail::terminated(text).c_str()));
}

/** @} */

/**
 * @defgroup zel_face_locale C++: dates, comparison, validity
 * @{
 */

/**
 * A moment as a reader of the locale would write it; an empty locale or zone is the default of zel.h. In a
 * charset whose characters have NUL bytes (UTF-16, UTF-32) it ends at the first of them: such a date is
 * written in UTF-8 and handed to convert().
 */
inline std::string date(std::string_view locale, std::string_view zone, std::time_t time,
                        std::string_view charset = "UTF-8") {
    const std::string place = detail::terminated(locale), zone_name = detail::terminated(zone),
                      to = detail::terminated(charset);
    if (time < std::numeric_limits<std::int32_t>::min() || time > std::numeric_limits<std::int32_t>::max())
        throw error("a time that 32 bits do not hold");
    return detail::taken(ZEL_GenerateDateString(detail::or_null(place), detail::or_null(zone_name),
                                                static_cast<std::int32_t>(time), to.c_str()));
}

/** Below 0, 0 or above 0, as the first text sorts before, with or behind the second in the locale. */
inline int compare(std::string_view locale, std::string_view first, std::string_view second,
                   std::string_view charset = "UTF-8") {
    const std::string place = detail::terminated(locale), of = detail::terminated(charset);
    return ZEL_CompareStrings(detail::or_null(place), of.c_str(), detail::terminated(first).c_str(),
                              detail::terminated(second).c_str());
}

/** compare() of two header values, decoded by decode_header(). */
inline int compare_headers(std::string_view language, std::string_view first, std::string_view second,
                           std::string_view charset = "UTF-8") {
    std::string one = detail::terminated(first), other = detail::terminated(second);
    return ZEL_CompareMessageHeaderStrings(detail::terminated(language).c_str(),
                                           detail::terminated(charset).c_str(), one.data(), other.data());
}

/** Tells whether no byte is 0x80 or above. */
inline bool is_ascii(std::string_view text) {
    return std::none_of(text.begin(), text.end(), [](char byte) { return (byte & 0x80) != 0; });
}

/** Double-byte text in which "?" stands for each byte that broke it. */
inline std::string repaired(std::string_view charset, std::string_view text) {
    std::string copy = detail::terminated(text);
    ZEL_CheckStringValidity(detail::terminated(charset).c_str(), copy.data());
    return copy;
}

/** @} */

/**
 * @defgroup zel_face_mail C++: mail at large
 * Readers for whatever the Internet sends, and writers that every reader understands. Text is UTF-8. A
 * fallback is the charset of raw bytes that are not UTF-8 and have no label; it is converted from without a
 * look at the list of known_charset().
 */

} // namespace face
} // namespace zel

#include "zel_page.hpp"
#include "zel_read.hpp"
#include "zel_write.hpp"

#endif
