// See canonical_order.h. A few wide ranges of characters are all that is known, and a few charsets.

#include "zel/locale/canonical_order.h"

#include "zel/base/charset_names.h"

#include <algorithm>
#include <iterator>

namespace zel {
namespace {

struct unit_range {
    char16_t first, last;
};

// These lie around the marks of the scripts that they hold, and hold no surrogates.
constexpr unit_range without_marks[] = {{0x0000, 0x02FF}, {0x0370, 0x0482}, {0x1E00, 0x20CF},
                                        {0x3000, 0x3029}, {0x3030, 0x3098}, {0x309B, 0xA66E},
                                        {0xAC00, 0xD7A3}, {0xFF00, 0xFFEF}};

// All ranges without a branch, so that compilers take many units at once.
constexpr char16_t is_within_none(char16_t unit) {
    char16_t outside = 1;
    for (const auto [first, last] : without_marks)
        outside &=
            static_cast<char16_t>(static_cast<char16_t>(unit - first) > static_cast<char16_t>(last - first));
    return outside;
}

constexpr const char *charsets_without_marks[] = {
    ianaUSASCII,   ianaISO8859_1, ianaISO8859_2,  ianaISO8859_4,   ianaISO8859_5,
    ianaISO8859_7, ianaISO8859_9, ianaISO8859_15, ianaWINDOWS1252, ianaSHIFTJIS,
    ianaEUCJP,     ianaEUCKR,     ianaGB2312,     ianaBIG5};

} // namespace

bool keeps_order(std::u16string_view text) {
    char16_t outside = 0;
    for (const char16_t unit : text)
        outside |= is_within_none(unit);
    return outside == 0;
}

bool lacks_marks(const char *charset) {
    return std::any_of(std::begin(charsets_without_marks), std::end(charsets_without_marks),
                       [=](const char *each) { return same_name(each, charset); });
}

} // namespace zel
