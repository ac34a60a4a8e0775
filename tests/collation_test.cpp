// Comparison by collation, its fallback on the bytes, and header values.

#include "support.h"

namespace {

int32_t compare_headers(const char *language, const std::string &first, const std::string &second) {
    const exact_buffer one = exact_string(first), other = exact_string(second);
    return ZEL_CompareMessageHeaderStrings(language, "UTF-8", one.data(), other.data());
}

TEST(Collation, sorts_as_a_reader_of_the_language_does) {
    const struct {
        const char *locale, *charset, *first, *second;
        int32_t order;
    } rows[] = {{"de", "UTF-8", "Äpfel", "Birnen", -1},
                {"sv", "UTF-8", "Äpplen", "Zebra", 1},
                {"de-AT", "iso-8859-1", "\xC4pfel", "Birnen", -1},
                {"en", "UTF-8", "a\u0323\u0301", "a\u0301\u0323", 0},
                {"en", "UTF-8", "\u1ed9", "o\u0302\u0323", 0},
                {"ja", "Shift_JIS", "\x82\xa0", "\x82\xa2", -1},
                {"en", nullptr, "a", "B", -1},
                {"en", "", "b", "A", 1}};
    for (const auto &row : rows)
        EXPECT_EQ(ZEL_CompareStrings(row.locale, row.charset, row.first, row.second), row.order) << row.first;
}

int32_t compare(const std::string &first, const std::string &second) {
    return ZEL_CompareStrings("en", "UTF-8", first.c_str(), second.c_str());
}

TEST(Collation, sees_what_stands_before_and_behind_marks_however_many) {
    for (const std::size_t pairs : {1U, 15U, 128U, 129U, 20000U}) {
        const std::string marks = repeated("\u0301\u0316", pairs);
        EXPECT_EQ(compare("a" + marks + "b", "a" + marks + "c"), -1);
        EXPECT_EQ(compare("a" + marks, "A" + marks), -1);
    }
    EXPECT_EQ(compare(repeated("\u0301\u0316", 128), repeated("\u0316", 128) + repeated("\u0301", 128)), 0);
}

TEST(Collation, puts_null_before_any_string_and_falls_back_on_the_bytes_where_icu_cannot_tell) {
    EXPECT_EQ(ZEL_CompareStrings("en", "no such", nullptr, nullptr), 0);
    EXPECT_EQ(ZEL_CompareStrings("en", "no such", nullptr, ""), -1);
    EXPECT_EQ(ZEL_CompareStrings("en", "no such", "", nullptr), 1);
    EXPECT_GT(ZEL_CompareStrings("en", "no such", "a", "B"), 0);
    for (const std::string &locale :
         {"de_" + std::string(154, 'A'), std::string(12, 'a'), std::string("de@=x"), std::string("de_AT@=b")})
        EXPECT_GT(ZEL_CompareStrings(locale.c_str(), "UTF-8", "a", "B"), 0) << locale;
}

TEST(HeaderComparison, sees_through_encodings_and_folds_which_both_values_lose) {
    start_library();
    EXPECT_EQ(compare_headers("de", "=?iso-8859-1?Q?=C4pfel?=", "=?utf-8?B?w4RwZmVs?="), 0);
    EXPECT_EQ(compare_headers("de", "=?iso-8859-1?Q?=C4pfel?=", "Birnen"), -1);
    const exact_buffer first = exact_string("a\r\n b"), second = exact_string("a\r\n =?utf-8?Q?_b?=");
    EXPECT_EQ(ZEL_CompareMessageHeaderStrings("en", "UTF-8", first.data(), second.data()), 0);
    EXPECT_EQ(first.text() + second.text(), "a ba=?utf-8?Q?_b?=");
}

// In UTF-8 most of these letters take two and three bytes, and the header has one for each.
TEST(HeaderComparison, reaches_the_last_letter_of_values_of_any_size_and_of_texts_longer_than_their_headers) {
    start_library();
    const struct {
        const char *language, *opening, *closing, *letter, *next_letter;
    } rows[] = {{"en", "", "", "x", "y"},
                {"ru", "=?iso-8859-5?Q?", "?=", "\xD0", "\xD1"},
                {"el", "=?iso-8859-7?Q?", "?=", "\xE1", "\xE2"},
                {"th", "=?tis-620?Q?", "?=", "\xA1", "\xA2"}};
    for (const auto &[language, opening, closing, letter, next_letter] : rows)
        for (const std::size_t letters : {0U, 1U, 12U, 36U, 1000U, 1022U, 1023U, 1024U, 5000U, 100000U}) {
            const std::string text = opening + repeated(letter, letters);
            const std::string first = text + letter + closing, second = text + next_letter + closing;
            EXPECT_EQ(compare_headers(language, first, second), -1) << letters;
            EXPECT_EQ(compare_headers(language, second, first), 1) << letters;
        }
}

} // namespace
