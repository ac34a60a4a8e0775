// Bodies on their way out: charset and transfer encoding by language, sizes, and the way back.

#include "scratch.h"
#include "support.h"

namespace {

auto encoder_of(const std::string &language, const char *from_charset, const std::string &body,
                int32_t qp_for_8bit) {
    return [=](char *to_buf, int32_t to_size) {
        const exact_buffer text = exact_string(body);
        return ZEL_LocalToInternetMessageBody(language.c_str(), from_charset, text.data(), to_buf, to_size,
                                              qp_for_8bit);
    };
}

TEST(BodyEncoding, language_and_text_choose_charset_and_transfer_encoding) {
    start_library();
    const struct {
        const char *language, *from_charset;
        std::string body;
        int32_t qp_for_8bit;
        std::string wire;
    } rows[] = {{"en", "UTF-8", "a.b\n", 1, "a.b\n"},
                {"i-default", "UTF-8", "é", 1, "=E9"},
                {"de", "iso-8859-15", "a.\xA4\n", 0, "a.\xA4\n"},
                {"de", "windows-1252", "\x80\xE9", 0, "\xA4\xE9"},
                {"el", "UTF-8", "Ωx", -1, "=D9x"},
                {"tr", "UTF-8", "ş.", 1, "\xFE."},
                {"tr", "utf-7", "a+AAA-b", 1, "a"}, // a zero byte ends what is handed over as a string
                {"ko", "UTF-8", "a=\nb\r\n", 0, "a=3D\r\nb\r\n"},
                {"zh", "UTF-8", "中", 1, "\xD6\xD0"},
                {"zh-cn", "UTF-8", "中", 0, "=D6=D0"},
                {"zh-TW", "gb2312", "\xD6\xD0", 0, "=A4=A4"},
                {"ja", "iso-2022-jp", "\x1B$BF|\x1B(B", 1, "\x1B$BF|\x1B(B"},
                {"ja", "EUC-JP", "a\xC6\xFC\x8E\xB1", 1, "a\x1B$BF|%\"\x1B(B"},
                {"ja", "shift_jis", "\x93\xFA\xB1z", 1, "\x1B$BF|%\"\x1B(Bz"},
                {"ja", "UTF-8", "日a", 1, "\x1B$BF|\x1B(Ba"},
                {"pl", "UTF-8", "ж", 0, "\x1A"}};
    for (const auto &row : rows)
        expect_whole_units(encoder_of(row.language, row.from_charset, row.body, row.qp_for_8bit), row.wire,
                           is_triple_end<'='>, 8);
}

TEST(QuotedPrintable, protects_blanks_at_a_line_end_and_breaks_long_lines_behind_whole_units) {
    start_library();
    const std::string x = '\xE9' + std::string(69, 'x'), wire = "=E9" + std::string(69, 'x');
    const struct {
        std::string body, wire;
    } rows[] = {
        {"\xE9 !\"#$%&'()*+,-./09:;<", "=E9 !=22=23=24=25=26=27()*+=2C-=2E/09=3A=3B=3C"},
        {"=>?@AZ[\\]^_`az{|}~\x01\x7F\xE9", "=3D=3E=3F=40AZ=5B=5C=5D=5E=5F=60az=7B=7C=7D=7E=01=7F=E9"},
        {"\xE9\rb\nc\r\n\n\r", "=E9\r\nb\r\nc\r\n\r\n\r\n"},
        {"\xE9 \r\n", "=E9 =\r\n\r\n"},
        {"\t\n \r\xE9", "\t=\r\n\r\n =\r\n\r\n=E9"},
        {" a\n =\n \xE9 ", " a\r\n =3D\r\n =E9 "},
        {x, wire},
        {x + "x", wire + "x=\r\n"},
        {x + "==", wire + "=3D=\r\n=3D"},
        {x + " \n", wire + " =\r\n\r\n"},
        {x + "\n" + x + "x", wire + "\r\n" + wire + "x=\r\n"}};
    for (const auto &row : rows)
        expect_whole_units(encoder_of("fr", "ISO-8859-15", row.body, 1), row.wire, is_triple_end<'='>, 3);
}

TEST(BodyEncoding, what_cannot_be_encoded_is_told_apart) {
    const exact_buffer to(8);
    for (const char *none : {"", static_cast<const char *>(nullptr)})
        EXPECT_EQ(ZEL_UTF8ToInternetMessageBody("xx", none, to.data(), -1, 0), -1);
    start_library();
    EXPECT_EQ(ZEL_UTF8ToInternetMessageBody("xx", "", to.data(), 8, 0), -1);
    for (const char *unknown : {"xx", "en-US", "", static_cast<const char *>(nullptr)})
        EXPECT_EQ(ZEL_UTF8ToInternetMessageBody(unknown, "x", to.data(), 8, 0), -2);
    for (const char *language : {"de", "ja", "ko"})
        EXPECT_EQ(ZEL_LocalToInternetMessageBody(language, "nonsense", "\xE9", to.data(), 8, 1), -5);
    EXPECT_TRUE(to.untouched());
}

TEST(BodyEncoding, the_bundle_has_no_say_but_in_received_bodies) {
    const custom_bundle bundle("mail|de = koi8-r\n");
    start_library(bundle.root().c_str());
    EXPECT_EQ(in_two_calls(encoder_of("de", "UTF-8", "é", 0)), "\xE9");
    const exact_buffer to(10);
    EXPECT_EQ(ZEL_InternetMessageBodyToLocalLen("de", 0, "\xD6x", 1, "UTF-8", to.data(), to.length()), 2);
    EXPECT_EQ(to.text(), "ж");
}

TEST(BodyEncoding, the_size_is_the_formula_where_that_is_enough_and_else_the_need) {
    start_library();
    EXPECT_EQ(encoder_of("en", "us-ascii", std::string(24, 'x'), 1)(nullptr, -1), 25);
    EXPECT_EQ(encoder_of("de", "iso-8859-15", "xxx\xE9", 0)(nullptr, -1), 5);
    EXPECT_EQ(encoder_of("de", "iso-8859-15", "xxx\xE9", 1)(nullptr, -1), 3 * 5);
    EXPECT_EQ(encoder_of("ja", "euc-jp", "xxx", 0)(nullptr, -1), 2 * 3 + 1);
    const std::string wire = repeated("\x1B$B%\"\x1B(Bz", 5000);
    EXPECT_EQ(in_two_calls(encoder_of("ja", "Shift_JIS", repeated("\xB1z", 5000), 0)), wire);
    EXPECT_EQ(in_two_calls(encoder_of("ja", "iso-8859-1", "\xB1", 0)), "\x1B$B!^\x1B(B");
    EXPECT_EQ(in_two_calls(encoder_of("ja", "UTF-8", repeated("アz", 5000), 0)), wire);
    EXPECT_EQ(in_two_calls(encoder_of("el", "UTF-16BE", "\x03\xB1\x03", 1)), "=E1=1A");
    EXPECT_EQ(in_two_calls(encoder_of("fr", "iso-8859-15", repeated("\xE9", 10000), 1)),
              repeated(repeated("=E9", 25) + "=\r\n", 400));
}

TEST(BodyEncoding, needs_a_started_library_and_takes_only_the_direct_routes_in_passthrough) {
    EXPECT_DEATH(encoder_of("xx", "UTF-8", "x", 0)(nullptr, -1),
                 "gf_ZELStatus != ZEL_STATUS_NOT_INITIALIZED");
    start_library();
    gf_ZELStatus = ZEL_STATUS_PASSTHROUGH;
    EXPECT_EQ(in_two_calls(encoder_of("de", "UTF-8", "é", 1)), "=C3=A9");
    EXPECT_EQ(in_two_calls(encoder_of("ja", "UTF-8", "é", 1)), "é");
    EXPECT_EQ(in_two_calls(encoder_of("ja", "euc-jp", "\xC6\xFC", 1)), "\x1B$BF|\x1B(B");
}

} // namespace
