// What comparison takes for granted of ICU, asked of ICU.

#include "support.h"

#include "zel/locale/canonical_order.h"
#include "zel/locale/icu_locale.h"

#include <unicode/locid.h>
#include <unicode/uchar.h>

#include <utility>

namespace {

using namespace zel;

TEST(CanonicalOrder, is_known_of_no_unit_that_brings_a_mark) {
    for (unsigned unit = 0; unit < 0x10000; ++unit) {
        const auto point = static_cast<UChar32>(unit);
        const bool is_harmless =
            !U_IS_SURROGATE(point) && u_getIntPropertyValue(point, UCHAR_LEAD_CANONICAL_COMBINING_CLASS) == 0;
        EXPECT_LE(keeps_order(std::u16string(20, static_cast<char16_t>(unit))), is_harmless) << unit;
    }
}

TEST(CanonicalOrder, is_known_of_common_text_and_of_no_text_with_a_mark_anywhere) {
    std::u16string text = u"Grüße, žluťoučký! Ελληνικά по-русски 日本語のテキスト。 한국어 ￥";
    EXPECT_TRUE(keeps_order(text));
    EXPECT_TRUE(keeps_order(u""));
    for (char16_t &unit : text) {
        const char16_t before = std::exchange(unit, u'\u0301');
        EXPECT_FALSE(keeps_order(text));
        unit = before;
    }
}

TEST(LocaleNames, of_two_letters_and_a_territory_of_two_are_all_well_formed) {
    const std::string letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
    for (const char first : letters)
        for (const char second : letters)
            for (const char *const territory : {"", "_at", "_XX", "_Zz"}) {
                const std::string name = std::string{first, second} + territory;
                ASSERT_FALSE(icu::Locale(name.c_str()).isBogus()) << name;
                ASSERT_EQ(find_locale(name.c_str())->name, name);
            }
}

} // namespace
