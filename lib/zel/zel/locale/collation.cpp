// Comparison of texts and of header values as a reader of the language would sort them. Both texts go to
// UTF-16 and through ICU's collation; wherever ICU cannot do its part, the bytes decide.
//
// Invariant: collation is an improvement and never a condition, so nothing fails.

#include "zel.h"
#include "zel/base/charset_names.h"
#include "zel/base/icu_converter.h"
#include "zel/base/output.h"
#include "zel/base/utf16_text.h"
#include "zel/locale/canonical_order.h"
#include "zel/locale/icu_locale.h"

#include <unicode/ucol.h>

#include <algorithm>
#include <cstring>
#include <optional>

namespace zel {
namespace {

using collator = owned<UCollator, &ucol_close>;

// Texts that are in order already compare alike whether ICU normalizes them or not, and it takes long to set
// up for it. To look through a long text takes longer.
bool is_known_ordered(const utf16_text &text) {
    constexpr std::int32_t soon_looked_through = 512;
    return text.length <= soon_looked_through &&
           keeps_order({text.units.get(), static_cast<std::size_t>(text.length)});
}

collator open_collator(const char *locale, bool normalize) {
    const std::optional<icu_locale> known = find_locale(locale);
    if (!known)
        return nullptr;
    UErrorCode status = U_ZERO_ERROR;
    collator opened(ucol_open(known->name, &status));
    if (U_FAILURE(status))
        return nullptr;
    ucol_setStrength(opened.get(), UCOL_TERTIARY);
    if (normalize)
        ucol_setAttribute(opened.get(), UCOL_NORMALIZATION_MODE, UCOL_ON, &status);
    return opened;
}

// Nothing where ICU cannot tell.
std::optional<std::int32_t> collate(const char *locale, const char *charset, const char *first,
                                    const char *second) {
    UErrorCode status = U_ZERO_ERROR;
    const icu_converter cnv(ucnv_open(charset, &status));
    if (U_FAILURE(status))
        return std::nullopt;
    const std::int32_t min_char_size = ucnv_getMinCharSize(cnv.get());
    const utf16_text one = break_long_runs(to_utf16(cnv.get(), min_char_size, first));
    const utf16_text other = break_long_runs(to_utf16(cnv.get(), min_char_size, second));
    if (!one.units || !other.units)
        return std::nullopt;
    const bool in_order = lacks_marks(charset) || (is_known_ordered(one) && is_known_ordered(other));
    const collator order = open_collator(locale, !in_order);
    if (!order)
        return std::nullopt;
    return ucol_strcoll(order.get(), one.units.get(), one.length, other.units.get(), other.length);
}

// A value of this length is decoded without memory and without a call for the size of its text. A byte of it
// becomes one UTF-16 unit at most, and a unit 8 bytes. To each text ICU reckons 10 units more, for what
// switches sets: an encoded word has them in its frame of 11 bytes at least ("=?big5?Q??="), so that they
// count for the tail alone.
constexpr std::size_t short_value = 1024;
constexpr std::int32_t longest_unit = 8;

struct header_buffer {
    char fixed[9 * 1024];
    heap_string longer;
};

static_assert(sizeof header_buffer::fixed > UCNV_GET_MAX_BYTES_FOR_STRING(short_value, longest_unit));

std::int32_t size_of_text(const char *language, const char *charset, char *value) {
    const std::int32_t estimate =
        ZEL_InternetMessageHeaderToLocalLen(language, value, -1, charset, nullptr, -1);
    return saturate(static_cast<std::uint64_t>(estimate) + 1);
}

// The text of a header value, which may be longer than the value on the wire; null without memory.
const char *decode_header(const char *language, const char *charset, char *value, header_buffer &buffer) {
    char *text = buffer.fixed;
    std::int32_t size = sizeof buffer.fixed;
    if (std::strlen(value) > short_value) {
        size = size_of_text(language, charset, value);
        buffer.longer = allocate<char>(static_cast<std::uint64_t>(size));
        text = buffer.longer.get();
    }
    if (text)
        ZEL_InternetMessageHeaderToLocalLen(language, value, -1, charset, text, size);
    return text;
}

} // namespace
} // namespace zel

using namespace zel;

int32_t ZEL_CompareStrings(const char *locale, const char *charset, const char *first, const char *second) {
    if (!first || !second)
        return (first ? 1 : 0) - (second ? 1 : 0);
    const int by_bytes = std::strcmp(first, second);
    if (by_bytes == 0)
        return 0;
    const char *known_charset = charset && *charset ? charset : ianaUSASCII;
    return collate(locale, known_charset, first, second).value_or(by_bytes);
}

int32_t ZEL_CompareMessageHeaderStrings(const char *language, const char *charset, char *first,
                                        char *second) {
    header_buffer first_buffer;
    header_buffer second_buffer;
    const char *first_text = decode_header(language, charset, first, first_buffer);
    const char *second_text = decode_header(language, charset, second, second_buffer);
    if (!first_text || !second_text)
        return std::strcmp(first, second);
    return ZEL_CompareStrings(language, charset, first_text, second_text);
}
