// The vocabulary of languages: 47 tags in the manner of RFC 1766, each with a small id and with what its
// messages and web pages are written in. One list of rows feeds the tags, the ids and every answer by
// language.
//
// Invariant: all of it is constant from load time on, so it is read before the start, after the stop and by
// any thread.

#pragma once

#include "zel.h"

#include <array>

namespace zel {

inline constexpr LanguageID no_language = -1;
inline constexpr LanguageID english = 1;
inline constexpr LanguageID japanese = 41;
inline constexpr LanguageID korean = 42;
inline constexpr LanguageID chinese = 43;
inline constexpr LanguageID chinese_cn = 44;
inline constexpr LanguageID chinese_cn_underscored = 45;
inline constexpr LanguageID chinese_tw = 46;
inline constexpr LanguageID chinese_tw_underscored = 47;

// How a body travels: as its bytes ask for, or in one way whatever they are.
enum class transfer { by_text, seven_bit, quoted_printable };

struct language_policy {
    const char *mail_charset;
    const char *http_charset;
    std::array<const char *, 3> known; // admitted in messages beside UTF-8 and UTF-7; null behind the last
    transfer encoding;
};

// Never fails: what is no language has a policy too.
const language_policy &policy_of(LanguageID id);

// The id of a tag in any case, "i-default" being English; no_language for a null, an empty or an unknown tag.
LanguageID checkLanguage(const char *language);

} // namespace zel
