// Received bodies, their transfer encoding already undone, on the way into the host's charset. A charset step
// and nothing else: the four exported functions differ only in what the caller supplies.
//
// Invariant: output goes straight into the caller's buffer, no byte of it past to_size.

#include "zel.h"
#include "zel/base/charset_names.h"
#include "zel/base/frame.h"
#include "zel/base/output.h"
#include "zel/codec/string_validity.h"
#include "zel/conversion/buffer_conversion.h"
#include "zel/conversion/routes.h"
#include "zel/policy/charset_policy.h"

namespace zel {
namespace {

struct received_body {
    const char *language;
    charset_pair pair;
    std::string_view bytes;
};

bool goes_between(const received_body &from, const char *from_charset, const char *to_charset) {
    return same_name(from.pair.from_charset, from_charset) && same_name(from.pair.to_charset, to_charset);
}

// The first two letters of the language open a route, whatever follows them.
const route *find_open_route(const received_body &from) {
    const route *found = find_route(scope::received_bodies, from.pair.from_charset, from.pair.to_charset);
    const bool is_open = found && from.language && std::strncmp(from.language, found->language, 2) == 0;
    return is_open ? found : nullptr;
}

bool is_korean_pair(const received_body &from) {
    return goes_between(from, ianaISO2022KR, ianaEUCKR);
}

// The Korean and the HZ pair need no converter of ICU, so they are not asked for one, under any language.
bool is_convertible(const received_body &from) {
    return same_name(from.pair.from_charset, from.pair.to_charset) || is_korean_pair(from) ||
           goes_between(from, ianaHZ, ianaGB2312) || has_converter(from.pair);
}

std::int32_t estimate(const received_body &from) {
    if (is_korean_pair(from))
        return saturate(2 * static_cast<std::uint64_t>(from.bytes.size()));
    return from.bytes.empty() ? 1 : result_size(from.pair, from.bytes.size());
}

std::int32_t convert_by_route(const route &direct, std::string_view bytes, char *to_buf,
                              std::int32_t to_size) {
    output to = output_to(to_buf, to_size);
    direct.convert(input_from(bytes), to);
    const std::int32_t length = finish_string(to);
    if (to.size > 0)
        checkstringvalidity(direct.to_charset, to_buf, to.length);
    return length;
}

// ICU may fill a buffer of the estimated size to its last byte, which leaves no room for a terminator.
std::int32_t convert_by_buffer(const received_body &from, char *to_buf, std::int32_t to_size) {
    output to = output_to(to_buf, to_size);
    if (put_converted(to, from.pair, from.bytes))
        return finish(to);
    if (to_size >= estimate(from))
        return convert_buffer(from.pair, from.bytes, to_buf, to_size).value_or(0);
    put_some_converted(to, from.pair, from.bytes);
    return finish(to);
}

std::int32_t _InternetMessageBodyToLocal(const received_body &from, char *to_buf, std::int32_t to_size) {
    if (!is_convertible(from))
        return no_converter;
    if (to_size < 0)
        return estimate(from);
    if (const route *direct = find_open_route(from))
        return convert_by_route(*direct, from.bytes, to_buf, to_size);
    return convert_by_buffer(from, to_buf, to_size);
}

} // namespace
} // namespace zel

using namespace zel;

int32_t ZEL_InternetMessageBodyLocalToLocalLen(const char *language, const char *from_charset, char,
                                               const char *from_buf, int32_t from_len, const char *to_charset,
                                               char *to_buf, int32_t to_size) {
    require_started();
    const bool is_given = has_text(from_charset);
    const std::size_t length = from_len < 0 ? std::strlen(from_buf) : static_cast<std::size_t>(from_len);
    const charset_pair pair = look_up(is_given ? from_charset : mail_charset(language), to_charset);
    const received_body from = {language, pair, {from_buf, length}};
    return _InternetMessageBodyToLocal(from, to_buf, to_size);
}

int32_t ZEL_InternetMessageBodyLocalToLocal(const char *language, const char *from_charset, char ignored,
                                            const char *from_buf, const char *to_charset, char *to_buf,
                                            int32_t to_size) {
    return ZEL_InternetMessageBodyLocalToLocalLen(language, from_charset, ignored, from_buf, -1, to_charset,
                                                  to_buf, to_size);
}

int32_t ZEL_InternetMessageBodyToLocalLen(const char *language, char ignored, const char *from_buf,
                                          int32_t from_len, const char *to_charset, char *to_buf,
                                          int32_t to_size) {
    return ZEL_InternetMessageBodyLocalToLocalLen(language, nullptr, ignored, from_buf, from_len, to_charset,
                                                  to_buf, to_size);
}

int32_t ZEL_InternetMessageBodyToLocal(const char *language, char ignored, const char *from_buf,
                                       const char *to_charset, char *to_buf, int32_t to_size) {
    return ZEL_InternetMessageBodyLocalToLocalLen(language, nullptr, ignored, from_buf, -1, to_charset,
                                                  to_buf, to_size);
}
