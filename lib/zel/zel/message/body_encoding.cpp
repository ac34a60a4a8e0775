// Bodies on their way out: first into the charset that the language calls for, then, for some languages, into
// quoted-printable. The charset comes from the table of languages alone: a label and its bytes are chosen
// apart, and no bundle may make them differ.
//
// Invariant: the text is not copied before the transfer step unless it is converted, and a conversion that no
// transfer step follows writes straight into the caller's buffer.

#include "zel.h"
#include "zel/base/charset_names.h"
#include "zel/base/frame.h"
#include "zel/base/output.h"
#include "zel/codec/quoted_printable.h"
#include "zel/codec/string_validity.h"
#include "zel/conversion/buffer_conversion.h"
#include "zel/conversion/routes.h"
#include "zel/policy/languages.h"

namespace zel {
namespace {

constexpr std::int32_t no_text = -1;
constexpr std::int32_t unknown_language = -2;

struct body {
    std::string_view text;
    charset_pair pair;  // into the charset on the wire
    bool same;          // the text is in that charset already
    conversion *direct; // null where there is none
    bool quoted_printable;
};

conversion *direct_encoder(LanguageID id, const char *from_charset) {
    const route *found =
        id == japanese ? find_route(scope::sent_bodies, from_charset, ianaISO2022JP) : nullptr;
    return found ? found->convert : nullptr;
}

body decide(LanguageID id, const char *from_charset, std::string_view text, bool qp_for_8bit) {
    const language_policy &policy = policy_of(id);
    const bool by_text = policy.encoding == transfer::by_text;
    const bool ascii = by_text && is7bit(text);
    const char *charset = ascii ? ianaUSASCII : policy.mail_charset;
    return {text, look_up(from_charset, charset), same_name(from_charset, charset),
            direct_encoder(id, from_charset),
            by_text ? qp_for_8bit && !ascii : policy.encoding == transfer::quoted_printable};
}

void put_quoted_printable(const body &from, output &to) {
    if (from.same) {
        mime_encode_qp_src(from.text, to, false, nullptr);
        return;
    }
    const converted_text converted = convert_text(from.pair, from.text);
    if (converted.bytes)
        mime_encode_qp_src(converted.bytes.get(), to, false, nullptr);
}

void put_body(const body &from, output &to) {
    if (from.direct)
        from.direct(input_from(from.text), to);
    else if (from.quoted_printable)
        put_quoted_printable(from, to);
    else
        put_some_converted(to, from.pair, from.text);
}

constexpr std::uint64_t escape_sequences = 6; // into a double-byte set and back

// A character that the end of the text cuts off is in no size of a text whose characters have two bytes or
// more, and text in such a charset that ICU cannot take in goes out as it is.
bool has_wide_characters(const charset_pair &pair) {
    return pair.cached && pair.cached->min_char_size > 1;
}

// What else the formula leaves out: soft line breaks, one for 24 triples, and the escape sequences around
// short runs.
bool may_need_more(const body &from, std::uint64_t size) {
    if (has_wide_characters(from.pair))
        return true;
    if (from.quoted_printable)
        return size > 24;
    return from.direct ? !is7bit(from.text) : size <= 2 * escape_sequences;
}

std::int32_t estimate(const body &from) {
    const auto size = static_cast<std::uint64_t>(result_size(from.pair, from.text.size()));
    const std::uint64_t formula = from.quoted_printable ? size * 3 : size;
    if (!may_need_more(from, size))
        return saturate(formula);
    return size_or_need(formula, [&](output &counted) { put_body(from, counted); });
}

} // namespace
} // namespace zel

using namespace zel;

int32_t ZEL_LocalToInternetMessageBody(const char *language, const char *from_charset, const char *from_buf,
                                       char *to_buf, int32_t to_size, int32_t qp_for_8bit) {
    if (!has_text(from_buf))
        return no_text;
    require_started();
    const LanguageID id = checkLanguage(language);
    if (id == no_language)
        return unknown_language;
    body from = decide(id, from_charset, from_buf, qp_for_8bit != 0);
    if (!from.same && !open_pair(from.pair))
        return no_converter;
    if (to_size < 0)
        return estimate(from);
    output to = output_to(to_buf, to_size);
    put_body(from, to);
    return from.quoted_printable ? finish(to) : finish_string(to); // what is quoted was read as a string
}

int32_t ZEL_UTF8ToInternetMessageBody(const char *language, const char *from_buf, char *to_buf,
                                      int32_t to_size, int32_t qp_for_8bit) {
    return ZEL_LocalToInternetMessageBody(language, encUTF8, from_buf, to_buf, to_size, qp_for_8bit);
}
