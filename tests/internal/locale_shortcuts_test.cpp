// What comparison takes for granted of ICU, asked of ICU.

#include "support.h"

#include "zel/base/icu_converter.h"
#include "zel/locale/canonical_order.h"
#include "zel/locale/icu_locale.h"

#include <unicode/locid.h>
#include <unicode/uchar.h>
#include <unicode/ucnv.h>

#include <algorithm>
#include <sstream>
#include <utility>

namespace {

using namespace zel;

bool may_bring_mark(char16_t unit) {
    return U_IS_SURROGATE(unit) || u_getIntPropertyValue(unit, UCHAR_LEAD_CANONICAL_COMBINING_CLASS) != 0;
}

TEST(CanonicalOrder, is_known_of_common_text_and_of_no_text_with_a_mark_anywhere) {
    for (unsigned unit = 0; unit < 0x10000; ++unit)
        EXPECT_FALSE(keeps_order(std::u16string(20, static_cast<char16_t>(unit))) &&
                     may_bring_mark(static_cast<char16_t>(unit)))
            << unit;
    std::u16string text = u"Grüße, žluťoučký! Ελληνικά по-русски 日本語のテキスト。 한국어 ￥";
    EXPECT_TRUE(keeps_order(text) && keeps_order(u""));
    for (char16_t &unit : text) {
        const char16_t before = std::exchange(unit, u'\u0301');
        EXPECT_FALSE(keeps_order(text));
        unit = before;
    }
}

// All of their pairs of bytes, alone and behind the byte that leads three in EUC-JP.
TEST(CanonicalOrder, is_known_of_charsets_that_have_no_marks) {
    std::istringstream names("us-ascii iso-8859-1 iso-8859-2 iso-8859-4 iso-8859-5 iso-8859-7 iso-8859-9 "
                             "iso-8859-15 windows-1252 Shift_JIS euc-jp euc-kr gb2312 big5");
    for (std::string name; names >> name;) {
        EXPECT_TRUE(lacks_marks(name.c_str())) << name;
        UErrorCode status = U_ZERO_ERROR;
        const icu_converter cnv(ucnv_open(name.c_str(), &status));
        for (unsigned bytes = 0; bytes < 0x20000; ++bytes) {
            const char text[] = {'\x8F', static_cast<char>(bytes >> 8), static_cast<char>(bytes)};
            const std::size_t start = bytes < 0x10000 ? 1 : 0;
            UChar units[8];
            const std::int32_t length = ucnv_toUChars(cnv.get(), units, 8, text + start,
                                                      static_cast<std::int32_t>(3 - start), &status);
            ASSERT_TRUE(U_SUCCESS(status) && std::none_of(units, units + length, may_bring_mark))
                << name << ' ' << std::hex << bytes;
        }
    }
    for (const char *name : {"iso-8859-6", "iso-8859-8", "tis-620", "UTF-8", "windows-1255", "windows-1258"})
        EXPECT_FALSE(lacks_marks(name)) << name;
}

utf16_text broken(const std::u16string &text) {
    utf16_text copy = {allocate_units(text.size()), static_cast<std::int32_t>(text.size())};
    std::copy(text.begin(), text.end(), copy.units.get());
    return break_long_runs(std::move(copy));
}

TEST(LongRuns, are_broken_wherever_they_stand_and_no_others) {
    for (const std::u16string mark : {u"\u0301", u"\u0F71", u"\u0F73", u"\U0001D165"})
        for (const std::size_t count : {30U, 256U, 257U, 600U})
            for (std::size_t before = 0; before < 520; before += 1 + before / 4) {
                std::u16string text(before, u'a'), expected = text;
                for (std::size_t number = 1; number <= count; ++number) {
                    text += mark;
                    expected += number % 30 == 0 && count > 256 ? mark + u'\u034F' : mark;
                }
                const utf16_text result = broken(text + u"\U00010400b" + mark);
                EXPECT_EQ(std::u16string(result.units.get(), static_cast<std::size_t>(result.length)),
                          expected + u"\U00010400b" + mark)
                    << count << " behind " << before;
            }
}

TEST(HeaderValues, have_room_as_no_converter_takes_more_than_8_bytes_for_a_unit) {
    for (std::int32_t index = 0; index < ucnv_countAvailable(); ++index) {
        UErrorCode status = U_ZERO_ERROR;
        const icu_converter cnv(ucnv_open(ucnv_getAvailableName(index), &status));
        EXPECT_LE(ucnv_getMaxCharSize(cnv.get()), 8) << ucnv_getAvailableName(index);
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
