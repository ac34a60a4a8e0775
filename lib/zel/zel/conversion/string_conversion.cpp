// A string is measured, its size estimated, and converted into memory of its own, of one byte more than it
// was told, so that it is terminated even where ICU fills all of it. What is no UTF-8 never reaches a
// converter from UTF-8, and mode 1 of escaped Unicode needs none.
//
// Invariant: each result is fresh memory, terminated, and has one owner.

#include "zel/conversion/string_conversion.h"

#include "zel.h"
#include "zel/base/charset_names.h"
#include "zel/base/escapes.h"
#include "zel/base/frame.h"
#include "zel/base/output.h"
#include "zel/conversion/buffer_conversion.h"
#include "zel/simd/utf8.h"

#include <unicode/ustring.h>

namespace zel {

heap_string duplicate(const char *text) {
    return heap_string(strdup(text));
}

heap_string local_to_local(const char *text, const char *from_charset, const char *to_charset) {
    if (!text)
        return nullptr;
    if (!*text)
        return duplicate(text);
    if (!from_charset)
        return nullptr;
    if (!*from_charset)
        return duplicate(text);
    require_started();
    if (passes_through())
        return duplicate(text);
    const std::string_view whole(text, static_cast<std::size_t>(saturate(std::strlen(text))));
    const charset_pair pair = look_up(from_charset, or_local_charset(to_charset));
    const std::int32_t size = result_size(pair, whole.size());
    // ICU may fill all of size, and a string is terminated even then.
    heap_string converted = allocate<char>(static_cast<std::uint64_t>(size) + 1);
    if (converted)
        converted.get()[convert_or_copy(pair, whole, converted.get(), size)] = '\0';
    return converted;
}

namespace {

constexpr int never_valid = -1;

// How many continuation bytes follow the byte. The shape alone counts: overlong forms and what lies beyond
// U+10FFFF are for ICU to deal with.
constexpr int continuation_bytes(unsigned char lead) {
    if (lead < 0x80)
        return 0;
    if (lead < 0xC0 || lead > 0xFD)
        return never_valid;
    return lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : lead < 0xF8 ? 3 : lead < 0xFC ? 4 : 5;
}

// A string that ends inside its last character passes.
bool has_utf8_shape(const char *text) {
    int expected = 0;
    for (; *text; ++text) {
        const auto byte = static_cast<unsigned char>(*text);
        if (expected) {
            if (!is_continuation(byte))
                return false;
            --expected;
        } else if ((expected = continuation_bytes(byte)) == never_valid) {
            return false;
        }
    }
    return true;
}

heap_string duplicate_in_ascii(const char *text) {
    heap_string copy = duplicate(text);
    for (char *at = copy.get(); at && *at; ++at)
        if (*at & 0x80)
            *at = '?';
    return copy;
}

constexpr bool is_plain(std::uint32_t value) {
    return value == '\t' || value == '\n' || (value >= 0x20 && value <= 0x7E);
}

bool is_all_plain(const char *text) {
    for (; *text; ++text)
        if (!is_plain(static_cast<unsigned char>(*text)))
            return false;
    return true;
}

void put_escaped(output &to, UChar unit) {
    const unicode_escape escape = escape_of(unit);
    if (is_plain(unit))
        put(to, static_cast<unsigned char>(unit));
    else
        put(to, {escape.data(), escape.size()});
}

// Gives null for text that is not UTF-8, and where there is no memory.
heap_string escape(const char *text) {
    UErrorCode status = U_ZERO_ERROR;
    std::int32_t units = 0;
    u_strFromUTF8(nullptr, 0, &units, text, -1, &status);
    if (status != U_BUFFER_OVERFLOW_ERROR)
        return nullptr;
    const std::uint64_t size = (static_cast<std::uint64_t>(units) + 1) * sizeof(unicode_escape);
    const heap<UChar> wide = allocate<UChar>(static_cast<std::uint64_t>(units));
    heap_string escaped = allocate<char>(size);
    if (!wide || !escaped)
        return nullptr;
    status = U_ZERO_ERROR;
    u_strFromUTF8(wide.get(), units, nullptr, text, -1, &status);
    output to = output_to(escaped.get(), saturate(size));
    for (std::int32_t i = 0; i < units; ++i)
        put_escaped(to, wide.get()[i]);
    finish(to);
    return escaped;
}

} // namespace
} // namespace zel

using namespace zel;

char *ZEL_LocalToLocal(const char *text, const char *from_charset, const char *to_charset) {
    return local_to_local(text, from_charset, to_charset).release();
}

char *ZEL_LocalToUTF8(const char *text, const char *charset) {
    return local_to_local(text, or_local_charset(charset), encUTF8).release();
}

char *ZEL_UTF8ToLocal(const char *text, const char *charset) {
    if (text && !has_utf8_shape(text))
        return duplicate_in_ascii(text).release();
    return local_to_local(text, encUTF8, or_local_charset(charset)).release();
}

char *ZEL_LocalToMUTF7(const char *text, const char *charset) {
    return local_to_local(text, or_local_charset(charset), encMUTF7).release();
}

char *ZEL_MUTF7ToLocal(const char *text, const char *charset) {
    return local_to_local(text, encMUTF7, or_local_charset(charset)).release();
}

char *ZEL_UTF8ToEscapedUnicode(const char *text, int32_t mode) {
    if (!text)
        return nullptr;
    if (!*text)
        return duplicate(text).release();
    require_started();
    if (passes_through())
        return duplicate(text).release();
    if (mode == 0)
        return local_to_local(text, encUTF8, encEUNICODE).release();
    if (is_all_plain(text))
        return duplicate(text).release();
    heap_string escaped = escape(text);
    return escaped ? escaped.release() : duplicate(text).release();
}
