// The C++ face for mail at large: what it reads and writes. What other readers make of it stands in
// neighbours_test.py. It and face_test.cpp are one program, as a host's sources are that share the face.

#include "zel.hpp"

#include <gtest/gtest.h>

using namespace std::string_literals;

namespace {

class Mail : public testing::Test {
    const zel::library library_{"/nowhere"};
};

struct row {
    std::string in, out;
};

TEST_F(Mail, is_read_in_headers_of_every_mailer) {
    const row rows[] = {
        {"Re:\r\n =?iso-8859-15?Q?Caf=e9_=A4?=\n\t(fr)", "Re: Café €\t(fr)"},
        {"=?utf-8*ja?B?5pel5g==?=\r\n =?UTF-8?b?nKw?= =?utf-8?Q?!?=", "日本!"},
        {"=?iso-2022-jp?B?GyRCRnwbKEI=?= =?iso-2022-jp?B?GyRCIUEbKEI=?=", "日〜"},
        {"=?hz-gb-2312?Q?~{VP~}?= =?hz-gb-2312?Q?~{ND~}?=", "中文"},
        {"=?gb2312?B?g4A=?= =?ks_c_5601-1987?B?gUE=?=", "儉갂"},
        {"=?iso-8859-1?Q?=80?==?windows-1252?Q?=80?=", "€€"},
        {" =?utf-8?Q??= a =?utf-8?Q?b?= c", "  a b c"},
        {"\"=?utf-8?Q?a b?=\" (=?utf-8?Q?c?=d)", "\"a b\" (cd)"},
        {"=?utf-8?B?Y!W=E=Yg==?=", "ab"},
        {"=?utf-8?Q?a=0=zz=0Db=?=", "a=0=zz\rb="},
        {"=?utf-8?B?YQBi?=", "a\0b"s},
        {"=?utf-8?Q?=C3?=x", "\uFFFDx"},
        {"=?utf-8?Q?=C3?= =?utf-8?B?qQ==?=", "\uFFFD\uFFFD"},
        {"=?x-foo?Q?=C3=A9?= =?x-foo,1?Q?=E9?= =?utf-8?X?a?= =?utf-8?Q?b?=",
         "é =?x-foo,1?Q?=E9?= =?utf-8?X?a?= b"},
        {"=?=?utf-8?Q?a?= =?utf-8?Q?b", "=?a =?utf-8?Q?b"},
        {"a = b?= =? c", "a = b?= =? c"},
        {"grün", "grün"},
        {"gr\xFCn =?us-ascii?Q?=80?=", "grün €"},
        {"a\r\nb\r\n", "a\r\nb"},
        {"", ""},
    };
    for (const row &row : rows)
        EXPECT_EQ(zel::read_header(row.in), row.out) << row.in;
    EXPECT_EQ(zel::read_header("\x93\xFA =?utf-8?Q?a?=", "Shift_JIS"), "日 a");
}

TEST_F(Mail, is_read_in_parameters_of_every_form) {
    const row rows[] = {
        {"; name=a b ; x", "a b"},
        {"; Name = \"a\\\"b;c\\\\d\\e\" ; name=f", "a\"b;c\\d\\e"},
        {"; name=\"a\r\n b", "a b"},
        {"; name=\"=?utf-8?Q?=C3=A9?=\"", "é"},
        {"; name=\"gr\xFCn\"", "grün"},
        {"; name=a; name*=iso-8859-1'de'%e9%zz%4", "é%zz%4"},
        {"; name*=%C3%A9", "é"},
        {"; name*=x-foo''%C3%A9", "é"},
        {"; name*10=k; name*1*=%A9%62; name*0*=utf-8''a%C3;\r\n name*2=\"%20'\"; name*1=z", "aéb%20'k"},
        {"; name*0=\"=?utf-8?B?w6\"; name*1=\"k=?=\"", "é"},
        {"; name*x=a; names=b; name*0x=c; name*99999999999=d; nam=e", "(none)"},
        {"name", "(none)"},
    };
    for (const row &row : rows)
        EXPECT_EQ(zel::read_parameter("attachment" + row.in, "name").value_or("(none)"), row.out) << row.in;
    EXPECT_EQ(zel::read_parameter("filename=a", "FILENAME"), "a");
}

TEST_F(Mail, is_read_in_bodies_by_a_list_of_charsets) {
    EXPECT_EQ(zel::read_body("ISO-2022-JP", "\x1B$BF|\x1B(B\x1B$BK\\\x1B(B\0"s), "日本\0"s);
    EXPECT_EQ(zel::read_body("utf8", "a\xFF"), "a\uFFFD");
    EXPECT_EQ(zel::read_body("iso-8859-1,1''x", "\xE9"), "é");
    EXPECT_EQ(zel::known_charset("GB2312"), "gb18030");
    EXPECT_EQ(zel::known_charset("iso-8859-15,"), std::nullopt);
    EXPECT_EQ(zel::known_charset(""), std::nullopt);
    for (const auto &known : zel::detail::mail_charsets)
        EXPECT_TRUE(zel::known_charset(known.name)) << known.name;
}

TEST_F(Mail, is_written_in_plain_words_and_encoded_ones) {
    const struct {
        const char *language;
        std::string text, value;
    } rows[] = {
        {"de", "Grüße aus Köln", "=?iso-8859-15?B?R3L832U=?= aus =?iso-8859-15?Q?K=F6ln?="},
        {"de", "Prost 🎉", "Prost =?utf-8?B?8J+OiQ==?="},
        {"ja", "日本 語", "=?iso-2022-jp?B?GyRCRnxLXBsoQiAbJEI4bBsoQg==?="},
        {"ja", "①", "=?utf-8?B?4pGg?="},
        {"ja", "ｱ", "=?utf-8?B?772x?="},
        {"tlh", "é", "=?utf-8?B?w6k=?="},
        {"de", "a  b =?c d\t", "=?utf-8?B?YSAgYiA9P2MgZAk=?="},
        {"de", "a\r\nBcc: b", "a Bcc: b"},
        {"de", std::string(67, 'a') + " b", std::string(67, 'a') + "\r\n b"},
        {"de", std::string(68, 'a'),
         "=?utf-8?Q?" + std::string(55, 'a') + "?=\r\n =?utf-8?Q?" + std::string(13, 'a') + "?="},
        {"de", std::string(50, 'a') + " äöü", std::string(50, 'a') + "\r\n =?iso-8859-15?B?5Pb8?="},
        {"de", "", ""},
    };
    for (const auto &row : rows)
        EXPECT_EQ(zel::write_header(row.language, row.text), row.value);
    EXPECT_EQ(zel::write_phrase("de", "Hans Muster"), "Hans Muster");
    EXPECT_EQ(zel::write_phrase("de", "Muster, Hans"), "=?utf-8?Q?Muster=2C_Hans?=");
}

TEST_F(Mail, is_written_in_whole_characters_and_short_lines_behind_any_name) {
    const std::string text =
        "a第3回会議の件について、東京で🎉\u00E9\u00E9 b (c) 会 議 " + std::string(80, 'd');
    for (std::size_t column = 0; column < 100; ++column)
        for (const char *language : {"ja", "ko"}) {
            const std::string value = zel::write_header(language, text, column);
            EXPECT_EQ(zel::read_header(value), (column > 30 ? " " : "") + text);
            for (std::size_t at = 0, end = 0; end < value.size(); at = end + 2) {
                end = std::min(value.find("\r\n", at), value.size());
                EXPECT_LE(end - at + (at == 0 ? column : 0), std::max<std::size_t>(76, column)) << value;
            }
            for (std::size_t at = value.find("=?"); at != std::string::npos; at = value.find("=?", at + 20))
                EXPECT_EQ(zel::read_header(value.substr(at, value.find("?= ", at))).find("\uFFFD"),
                          std::string::npos);
        }
}

TEST_F(Mail, is_written_in_parameters_and_bodies_without_loss) {
    EXPECT_EQ(zel::write_parameter("de", "filename", "a b.txt"), "filename=\"a b.txt\"");
    EXPECT_EQ(zel::write_parameter("de", "filename", "a\"\n"), "filename*=us-ascii''a%22%0A");
    EXPECT_EQ(zel::write_parameter("ja", "filename", "日"), "filename*=iso-2022-jp''%1B$BF|%1B%28B");
    EXPECT_EQ(zel::write_parameter("de", "filename", std::string(70, 'a')),
              "filename*0*=us-ascii''" + std::string(52, 'a') + ";\r\n filename*1*=" + std::string(18, 'a'));
    const struct {
        std::string text, charset, encoding, bytes;
    } rows[] = {
        {"a\nb\r\n", "us-ascii", "7bit", "a\r\nb\r\n"},
        {"日", "iso-2022-jp", "7bit", "\x1B$BF|\x1B(B"},
        {"①", "utf-8", "base64", "4pGg"},
        {"a\n.\nFrom b= \nÿ and more of this", "utf-8", "quoted-printable",
         "a\r\n=2E\r\n=46rom b=3D=20\r\n=C3=BF and more of this"},
        {"From a friend", "us-ascii", "quoted-printable", "=46rom a friend"},
        {"a\rb c d", "us-ascii", "quoted-printable", "a=0Db c d"},
        {std::string(998, 'a') + "\n", "us-ascii", "7bit", std::string(998, 'a') + "\r\n"},
    };
    for (const auto &row : rows) {
        const zel::body body = zel::write_body("ja", row.text);
        EXPECT_EQ(body.charset, row.charset) << row.text;
        EXPECT_EQ(body.transfer_encoding, row.encoding) << row.text;
        EXPECT_EQ(body.bytes, row.bytes);
    }
    EXPECT_EQ(zel::write_body("ja", std::string(999, 'a')).transfer_encoding, "quoted-printable");
}

TEST_F(Mail, is_written_in_pages_with_references_for_what_the_charset_lacks) {
    const std::string_view text = "<p title=\"\\~\">é 日〜① ー〇 🙂</p>";
    const row rows[] = {
        {"de", "<p title=\"\\~\">\xE9 &#26085;&#12316;&#9312; &#12540;&#12295; &#128578;</p>"},
        {"ja", "<p title=\"\\~\">&#233; \x93\xFA&#12316;&#9312; \x81\x5B\x81\x5A &#128578;</p>"},
        {"zh-CN", "<p title=\"\\~\">\xA8\xA6 \xC8\xD5&#12316;\xA2\xD9 &#12540;&#12295; &#128578;</p>"},
    };
    for (const row &row : rows) {
        EXPECT_EQ(zel::write_page(row.in, text).bytes, row.out);
        EXPECT_EQ(zel::write_page(row.in, text).charset, zel::web_charset(row.in));
    }
    for (const char *charset : {"utf-16", "utf-7", "hz-gb-2312", "iso-2022-jp", "iso-2022-kr", "x-none"})
        EXPECT_FALSE(zel::detail::is_for_pages(charset)) << charset;
    EXPECT_THROW(zel::write_page("ja", "\x93\xFA"), zel::error);
}

TEST_F(Mail, is_written_in_pages_as_text) {
    const row rows[] = {
        {"<a title=\"'\">&amp;", "&lt;a title=&quot;&#39;&quot;&gt;&amp;amp;"},
        {"a\0b\x1B\x7F\t\r\n"s, "a\uFFFDb\uFFFD\uFFFD\t\r\n"},
        {"\u0085\u00A0\xC2<", "\uFFFD\u00A0\uFFFD&lt;"},
        {"日🙂", "日🙂"},
    };
    for (const row &row : rows)
        EXPECT_EQ(zel::escape_html(row.in), row.out) << row.in;
}

TEST_F(Mail, is_read_in_the_language_that_its_reader_likes_best) {
    const row rows[] = {
        {"ja", "ja"},
        {"de-AT, en", "de"},
        {"en;q=0.5, fr ;q=0.91,it;q=.9", "fr"},
        {"xx, ko-KR;q=0.1", "ko"},
        {"en;Q=0.1, fr;q=0.5", "fr"},
        {"en;q=1, fr;q=9.9", "en"},
        {"zh-Hant-HK,zh", "zh-TW"},
        {"ZH-hans", "zh-CN"},
        {"nb-NO", "no"},
        {"ja;q=0, sv;q=0.001", "sv"},
        {"en;q=0.5;x, sv;q=1.000", "sv"},
        {"", "-"},
        {"xx, -, ;q=1, ja;q=x, ja;q=0.000", "-"},
    };
    for (const row &row : rows)
        EXPECT_EQ(zel::preferred_language(row.in).value_or("-"), row.out) << row.in;
}

TEST_F(Mail, is_labelled_for_what_it_is_though_nothing_is_converted) {
    gf_ZELStatus = ZEL_STATUS_PASSTHROUGH;
    EXPECT_EQ(zel::write_header("de", "é"), "=?utf-8?B?w6k=?=");
    EXPECT_THROW(zel::write_header("de", "\xE9"), zel::error);
}

} // namespace
