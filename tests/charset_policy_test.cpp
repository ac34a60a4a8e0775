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

// Of no text, of plain text, and of another without and with the wish for quoted-printable.
std::string encodings(const std::string &language) {
    const auto encoding = [&](const char *text, int32_t qp_for_8bit) {
        return std::string(ZEL_InternetMessageContentTransferEncoding(language.c_str(), text, qp_for_8bit));
    };
    EXPECT_EQ(encoding(nullptr, 1), encoding("", 0));
    return encoding("", 0) + " " + encoding("text", 1) + " " + encoding("\xE9", 0) + " " +
           encoding("\xE9", -1);
}

TEST(CharsetPolicy, every_language_has_its_charsets_and_transfer_encoding_without_a_bundle) {
    start_library();
    const std::string qp = "quoted-printable", by_text = qp + " 7bit 8bit " + qp;
    const std::string always_7bit = "7bit 7bit 7bit 7bit", always_qp = qp + " " + qp + " " + qp + " " + qp;
    const struct {
        std::string languages, mail, web, encodings;
    } rows[] = {{"en i-default", "iso-8859-15", "iso-8859-1", "7bit 7bit 8bit " + qp},
                {"de fr es af ca da nl fi gl ga is it no pt sv eu sq", "iso-8859-15", "iso-8859-1", by_text},
                {"cs hu pl ro hr sk sl", "iso-8859-2", "iso-8859-2", by_text},
                {"et lv lt", "iso-8859-4", "iso-8859-1", by_text},
                {"ru bg be sr mk uk", "iso-8859-5", "iso-8859-1", by_text},
                {"el", "iso-8859-7", "iso-8859-7", by_text},
                {"tr", "iso-8859-9", "iso-8859-1", always_7bit},
                {"ar", "iso-8859-6", "iso-8859-1", always_7bit},
                {"he", "iso-8859-8", "iso-8859-1", always_7bit},
                {"yi", "utf-8", "iso-8859-1", always_7bit},
                {"th", "tis-620", "iso-8859-1", always_7bit},
                {"ja JA", "iso-2022-jp", "Shift_JIS", always_7bit},
                {"ko", "euc-kr", "euc-kr", always_qp},
                {"zh", "gb2312", "iso-8859-1", always_7bit},
                {"zh-CN zh_CN", "gb2312", "gb2312", always_qp},
                {"zh-TW zh_tw", "big5", "big5", always_qp},
                {"xx en-US", "us-ascii", "iso-8859-1", always_7bit}};
    for (const auto &row : rows) {
        std::istringstream languages(row.languages);
        for (std::string language; languages >> language;) {
            EXPECT_EQ(mail_charset(language), row.mail) << language;
            EXPECT_EQ(web_charset(language), row.web) << language;
            EXPECT_EQ(encodings(language), row.encodings) << language;
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

} // namespace
