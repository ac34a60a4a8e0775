// Which charset and which transfer encoding the mails and web pages of a language have, with and without a
// bundle.

#include "scratch.h"
#include "support.h"

#include <sstream>
#include <string>

namespace {

const char *mail_charset(const std::string &language) {
    return ZEL_InternetMessageCharset(language.c_str(), nullptr);
}

const char *web_charset(const std::string &language) {
    return ZEL_HTTPContentCharset(language.c_str());
}

TEST(CharsetPolicy, every_language_has_its_charsets_without_a_bundle) {
    start_library();
    const struct {
        const char *languages, *mail, *web;
    } rows[] = {
        {"en de fr es af ca da nl fi gl ga is it no pt sv eu sq i-default", "iso-8859-15", "iso-8859-1"},
        {"cs hu pl ro hr sk sl", "iso-8859-2", "iso-8859-2"},
        {"et lv lt", "iso-8859-4", "iso-8859-1"},
        {"ru bg be sr mk uk", "iso-8859-5", "iso-8859-1"},
        {"el", "iso-8859-7", "iso-8859-7"},
        {"tr", "iso-8859-9", "iso-8859-1"},
        {"ar", "iso-8859-6", "iso-8859-1"},
        {"he", "iso-8859-8", "iso-8859-1"},
        {"yi", "utf-8", "iso-8859-1"},
        {"th", "tis-620", "iso-8859-1"},
        {"ja JA", "iso-2022-jp", "Shift_JIS"},
        {"ko", "euc-kr", "euc-kr"},
        {"zh", "gb2312", "iso-8859-1"},
        {"zh-CN zh_CN", "gb2312", "gb2312"},
        {"zh-TW zh_tw", "big5", "big5"},
        {"xx en-US", "us-ascii", "iso-8859-1"}};
    for (const auto &row : rows) {
        std::istringstream languages(row.languages);
        for (std::string language; languages >> language;) {
            EXPECT_STREQ(mail_charset(language), row.mail) << language;
            EXPECT_STREQ(web_charset(language), row.web) << language;
        }
    }
}

TEST(CharsetPolicy, plain_text_is_ascii_in_every_language) {
    start_library();
    for (const char *language : {"ja", "xx", "", static_cast<const char *>(nullptr)})
        EXPECT_STREQ(ZEL_InternetMessageCharset(language, "text\x7F"), "us-ascii");
    for (const char *text : {"", "\xE9", static_cast<const char *>(nullptr)}) {
        EXPECT_STREQ(ZEL_InternetMessageCharset("ja", text), "iso-2022-jp");
        EXPECT_STREQ(ZEL_InternetMessageCharset(nullptr, text), "us-ascii");
        EXPECT_STREQ(ZEL_InternetMessageCharset("", text), "us-ascii");
    }
}

TEST(CharsetPolicy, a_bundle_has_the_first_word_and_is_asked_once) {
    const std::string longest(120, 'l'), too_long(121, 'l');
    const custom_bundle bundle("mail|{ja,de," + longest + "," + too_long +
                               "} http|xx = koi8-r\nhttp|ja = euc-jp\n");
    start_library(bundle.root().c_str());
    EXPECT_STREQ(web_charset("ja"), "euc-jp");
    EXPECT_STREQ(web_charset("xx"), "koi8-r");
    EXPECT_STREQ(mail_charset("xx"), "us-ascii");
    EXPECT_STREQ(mail_charset(longest), "koi8-r");
    EXPECT_STREQ(mail_charset(too_long), "us-ascii");
    EXPECT_STREQ(mail_charset("ja"), "koi8-r");
    EXPECT_EQ(compile_bundle("mail|ja = utf-8\n", bundle.root()), "");
    EXPECT_STREQ(mail_charset("JA"), "koi8-r");
    // The bundle tells case apart, what is remembered does not.
    EXPECT_STREQ(mail_charset("DE"), "iso-8859-15");
    EXPECT_STREQ(mail_charset("de"), "iso-8859-15");
}

TEST(CharsetPolicy, the_default_bundle_gives_web_pages_a_charset_that_holds_their_letters) {
    start_library(DEFAULT_BUNDLE_ROOT);
    const struct {
        const char *language, *letters;
    } rows[] = {{"et", "šž"},      {"lv", "āčēģ"},  {"lt", "ąėįų"},  {"ru", "Жя"},  {"bg", "щъ"},
                {"be", "ў"},       {"sr", "ђџ"},    {"mk", "ѓќ"},    {"uk", "їє"},  {"tr", "ğışİ"},
                {"ar", "عربي"},    {"he", "עברית"}, {"yi", "ייִדיש"}, {"th", "ไทย"}, {"zh", "中文"},
                {"zh-TW", "臺灣"}, {"ja", "日本"},  {"pl", "łą"}};
    for (const auto &row : rows) {
        const char *charset = web_charset(row.language);
        const std::string page = taken(ZEL_LocalToLocal(row.letters, "UTF-8", charset));
        EXPECT_EQ(taken(ZEL_LocalToUTF8(page.c_str(), charset)), row.letters) << row.language << charset;
    }
}

TEST(CharsetPolicy, a_charset_is_known_to_the_languages_that_use_it) {
    const struct {
        const char *language, *charset;
        int32_t known;
    } rows[] = {{nullptr, "UTF-8", 1},       {"xx", "utf-7", 1},
                {"de", "ISO-8859-1", 1},     {"sq", "Windows-1252", 1},
                {"cs", "iso-8859-2", 1},     {"JA", "ISO-2022-JP", 1},
                {"ko", "ks_c_5601-1987", 1}, {"zh-tw", "Big5", 1},
                {"th", "us-ascii", 1},       {nullptr, "us-ascii", 0},
                {"yi", "us-ascii", 0},       {"de", "iso-8859-15", 0},
                {"cs", "windows-1252", 0},   {"ja", "Shift_JIS", 0},
                {"zh_TW", "gb2312", 0},      {"th", "", 0},
                {"en-US", "us-ascii", 0}};
    for (const auto &[language, charset, known] : rows)
        EXPECT_EQ(ZEL_IsInternetMessageKnownCharset(language, charset), known) << charset;
}

TEST(CharsetPolicy, the_transfer_encoding_follows_text_and_language) {
    const struct {
        const char *languages, *of_none, *of_plain, *of_8bit, *of_8bit_flagged;
    } rows[] = {{"I-Default en", "7bit", "7bit", "8bit", "quoted-printable"},
                {"de el", "quoted-printable", "7bit", "8bit", "quoted-printable"},
                {"tr yi th ja zh xx", "7bit", "7bit", "7bit", "7bit"},
                {"ko zh_TW", "quoted-printable", "quoted-printable", "quoted-printable", "quoted-printable"}};
    for (const auto &row : rows) {
        std::istringstream languages(row.languages);
        for (std::string language; languages >> language;) {
            const auto encoding = [&](const char *text, int32_t qp_for_8bit) {
                return ZEL_InternetMessageContentTransferEncoding(language.c_str(), text, qp_for_8bit);
            };
            EXPECT_STREQ(encoding(nullptr, 1), row.of_none);
            EXPECT_STREQ(encoding("", 0), row.of_none);
            EXPECT_STREQ(encoding("text", 1), row.of_plain);
            EXPECT_STREQ(encoding("\xE9", 0), row.of_8bit);
            EXPECT_STREQ(encoding("\xE9", -1), row.of_8bit_flagged);
        }
    }
}

} // namespace
