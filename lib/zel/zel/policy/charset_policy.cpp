// For a language and a use, mail or the web, the remembered answer is taken, else the bundle's, else that of
// the table of languages, and what was taken is remembered. What a text may then go out as follows from its
// bytes.
//
// Invariant: charset names that are given out live until the stop.

#include "zel/policy/charset_policy.h"

#include "zel.h"
#include "zel/base/charset_names.h"
#include "zel/base/fixed_text.h"
#include "zel/base/frame.h"
#include "zel/codec/string_validity.h"
#include "zel/policy/languages.h"
#include "zel/policy/local_config.h"

#include <cstring>

namespace zel {
namespace {

constexpr std::size_t max_language = 120;
constexpr std::size_t key_capacity = 128;

struct charset_rule {
    const char *prefix; // of its keys in the bundle
    const char *language_policy::*built_in;
};

constexpr charset_rule mail_rule{"mail|", &language_policy::mail_charset};
constexpr charset_rule http_rule{"http|", &language_policy::http_charset};

const char *remember(const char *key, const char *charset) {
    const held_lock lock = hold(localconfig_lock);
    const char *remembered = add_localconfig(key, charset);
    return remembered ? remembered : charset;
}

const char *charset_by(const charset_rule &rule, const char *language) {
    const std::size_t length = language ? strnlen(language, max_language + 1) : 0;
    if (length == 0 || length > max_language)
        return policy_of(no_language).*rule.built_in;
    char key[key_capacity];
    join(key, {rule.prefix, {language, length}});
    const char *configured = load_localconfig(key);
    return configured ? configured : remember(key, policy_of(checkLanguage(language)).*rule.built_in);
}

} // namespace

const char *mail_charset(const char *language) {
    return charset_by(mail_rule, language);
}

const char *http_charset(const char *language) {
    return charset_by(http_rule, language);
}

bool is_known_charset(LanguageID id, const char *charset) {
    if (same_name(charset, ianaUTF8) || same_name(charset, ianaUTF7))
        return true;
    for (const char *known : policy_of(id).known)
        if (known && same_name(charset, known))
            return true;
    return false;
}

} // namespace zel

using namespace zel;

const char *ZEL_HTTPContentCharset(const char *language) {
    return http_charset(language);
}

const char *ZEL_InternetMessageCharset(const char *language, const char *text) {
    const bool is_plain = text && *text && is7bitstring(text);
    return is_plain ? ianaUSASCII : mail_charset(language);
}

int32_t ZEL_IsInternetMessageKnownCharset(const char *language, const char *charset) {
    return is_known_charset(checkLanguage(language), charset);
}

const char *ZEL_InternetMessageContentTransferEncoding(const char *language, const char *text,
                                                       int32_t qp_for_8bit) {
    const LanguageID id = checkLanguage(language);
    const transfer encoding = policy_of(id).encoding;
    if (encoding == transfer::seven_bit)
        return "7bit";
    if (encoding == transfer::quoted_printable)
        return "quoted-printable";
    if (!text || !*text)
        return id == english ? "7bit" : "quoted-printable";
    if (is7bitstring(text))
        return "7bit";
    return qp_for_8bit ? "quoted-printable" : "8bit";
}
