// What comparison takes for granted of ICU, asked of ICU.

#include "support.h"

#include "zel/locale/icu_locale.h"

#include <unicode/locid.h>

namespace {

using namespace zel;

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
