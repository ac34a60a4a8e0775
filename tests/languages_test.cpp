// Languages: tags and ids, the text of all tags, stepping, multipliers, and the splitting of lists.
// None of this needs the library to be started.

#include "zel.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

std::vector<std::string> accepted(const std::string &list) {
    const auto rows = std::make_unique<char[][18]>(16);
    const int32_t count = ZEL_AcceptLangList(list.c_str(), rows.get());
    return {rows.get(), rows.get() + count};
}

TEST(Languages, tags_resolve_whole_and_in_any_case) {
    const struct {
        const char *tag;
        LanguageID lenient, strict;
    } rows[] = {{"ZH-cn", 44, 44}, {"zh_cn", 45, 45}, {"en-US", 1, -1}, {"e", 1, -1},   {"jap", 1, -1},
                {"%.", 1, -1},     {"zh-", 1, -1},    {nullptr, 1, -1}, {"Ja", 41, 41}, {"i-default", 1, -1}};
    for (const auto &row : rows) {
        EXPECT_EQ(ZEL_GetIntLanguageID(row.tag), row.lenient);
        EXPECT_EQ(ZEL_GetIntLanguageID_strict(row.tag), row.strict);
    }
}

TEST(Languages, the_list_names_every_language_in_the_order_of_ids) {
    std::string tags = "[en";
    for (LanguageID id = 2; id <= 47; ++id)
        tags.append(",").append(ZEL_GetRFC1766LanguageID(id));
    tags += "]";
    EXPECT_EQ(tags,
              "[en,de,fr,es,af,ca,da,nl,fi,gl,ga,is,it,no,pt,sv,eu,sq,cs,hu,pl,ro,hr,sk,sl,et,lv,lt,ru,bg,"
              "be,sr,mk,uk,el,tr,ar,he,yi,th,ja,ko,zh,zh-CN,zh_CN,zh-TW,zh_TW]");
    EXPECT_EQ(ZEL_GetAvailableLanguageList(), tags);
    for (const LanguageID id : {0, 1, 48, -1, INT32_MIN, INT32_MAX})
        EXPECT_STREQ(ZEL_GetRFC1766LanguageID(id), "en");
}

TEST(Languages, six_are_double_byte_and_plain_chinese_is_not) {
    for (LanguageID id = -2; id <= 50; ++id)
        EXPECT_EQ(ZEL_IsDBCSLanguage(id), id >= 41 && id <= 47 && id != 43) << id;
}

TEST(Languages, half_width_kana_alone_are_single_bytes_of_double_byte_text) {
    const struct {
        LanguageID id;
        const char *charset;
        unsigned char byte;
        int32_t offset;
    } rows[] = {{41, "shift_jis", 0xB1, 1}, {41, "euc-jp", 0xB1, 2},    {41, "Shift_JIS", 0xA0, 2},
                {41, nullptr, 0xB1, 2},     {42, "Shift_JIS", 0xB1, 2}, {43, nullptr, 0xB1, 1},
                {46, nullptr, 0x7F, 1}};
    for (const auto &row : rows)
        EXPECT_EQ(ZEL_GetOffsetToNextChar(row.id, row.charset, row.byte), row.offset);
}

TEST(Languages, the_worst_case_multiplier_follows_language_and_flags) {
    const struct {
        const char *tag;
        int32_t first_alone, both;
    } rows[] = {{"ja", 16, 5},    {nullptr, 16, 5}, {"ko", 10, 4}, {"zh_CN", 10, 4},
                {"zh-cn", 10, 4}, {"zh-TW", 9, 4},  {"zh", 21, 4}, {"", 21, 4}};
    for (const auto &row : rows) {
        EXPECT_EQ(ZEL_WorstCaseMultiplier(row.tag, 1, 0), row.first_alone);
        EXPECT_EQ(ZEL_WorstCaseMultiplier(row.tag, -1, 7), row.both);
        EXPECT_EQ(ZEL_WorstCaseMultiplier(row.tag, 0, 1), 2);
    }
}

TEST(Languages, a_list_is_split_at_commas_into_sixteen_pieces_at_most_which_are_left_as_they_are) {
    const std::string seventeen(17, 'a'), eighteen(18, 'b');
    const struct {
        std::string list;
        std::vector<std::string> pieces;
    } rows[] = {
        {"", {}}, {",en,, de;q=0.8,", {"en", " de;q=0.8"}}, {eighteen + "," + seventeen, {seventeen}}};
    for (const auto &row : rows)
        EXPECT_EQ(accepted(row.list), row.pieces);
    EXPECT_EQ(accepted("1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18").back(), "16");
    char english[16][18];
    EXPECT_EQ(ZEL_AcceptLangList(nullptr, english), 1);
    EXPECT_STREQ(english[0], "en");
}

TEST(Languages, a_hyphen_in_third_place_alone_becomes_an_underscore) {
    const char *const rows[][2] = {
        {"de-AT", "de_AT"},           {"en", "en"},  {"", ""}, {"ast-ES", "ast-ES"},
        {"sr-Latn-RS", "sr_Latn-RS"}, {"de-", "de_"}};
    for (const auto &[in, out] : rows) {
        std::string locale = in;
        char *text = locale.data();
        EXPECT_EQ(ZEL_NormalizeLocale(&text), static_cast<int32_t>(locale.size()));
        EXPECT_EQ(locale, out);
    }
}

} // namespace
