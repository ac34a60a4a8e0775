// See canonical_order.h. The answer comes from a few wide ranges alone.

#include "zel/locale/canonical_order.h"

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

} // namespace

bool keeps_order(std::u16string_view text) {
    char16_t outside = 0;
    for (const char16_t unit : text)
        outside |= is_within_none(unit);
    return outside == 0;
}

} // namespace zel
