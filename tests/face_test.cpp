// The C++ face as a host sees it: what each function gives, and what it refuses. What GMime and Python read
// of it stands in face_test.py.

#include "zel.hpp"

#include <gtest/gtest.h>

#include <functional>

using namespace std::string_literals;

namespace {

class Face : public testing::Test {
    const zel::library library_{"/nowhere"};
};
using Reader = Face;

struct row {
    std::string in, out;
};

TEST_F(Face, hides_sizes_copies_and_terminators) {
    const std::string kana = "\x82\xA0"
                             "a\x82\xA0"
                             "a\x82\xA0";
    const row rows[] = {
        {zel::convert("a\0\xE9"s, "iso-8859-1", "utf-8"), "a\0é"s},
        {zel::convert(kana, "Shift_JIS", "iso-2022-jp"), "\x1B$B$\"\x1B(Ba\x1B$B$\"\x1B(Ba\x1B$B$\"\x1B(B"},
        {zel::convert("", "utf-8", "iso-2022-kr"), ""},
        {zel::convert_directly(sjis2jis, "\x93\xFA"), "\x1B$BF|\x1B(B"},
        {zel::decode_mailbox(zel::encode_mailbox("Entwürfe")), "Entwürfe"},
        {zel::local_to_utf8(zel::utf8_to_local("é")), "é"},
        {zel::escape_unicode("é\r", true), "\\u00E9\\u000D"},
        {zel::encode_header("de", "üüüüüüüüüüüüüüüüüüüü"), "=?iso-8859-15?Q?" +
                                                               [] {
                                                                   std::string text;
                                                                   while (text.size() < 60)
                                                                       text += "=FC";
                                                                   return text;
                                                               }() +
                                                               "?="},
        {zel::decode_header("ru", zel::encode_header("ru", "Привет, мир")), "Привет, мир"},
        {zel::encode_parameter("de", "name", "é"), "\tname*0*=iso-8859-15'de'%E9"},
        {zel::encode_parameter("de", "name", ""), ""},
        {zel::decode_parameter("utf-8'de'%C3%A9"), "é"},
        {zel::encode_body("de", "é"), "=E9"},
        {zel::decode_body("ko", "iso-2022-kr", "\x1B$)C\x0E!!", "euc-kr"), "\xA1\xA1"},
        {zel::decode_body("de", "utf-8", ""), ""},
        {zel::encode_vcard("ja", "日"), "=93=FA"},
        {zel::encode_base64(std::string(60, 'a')).substr(64), "YWFh\r\nYWFhYWFhYWFh"},
        {zel::date("ja", "Asia/Tokyo", 1719450900), "2024年6月27日木曜日 10:15:00 JST"},
        {zel::repaired("euc-kr", "a\xB0"), "a?"},
        {zel::normalized_locale("de-DE"), "de_DE"},
        {zel::mail_charset("ja") + zel::web_charset("ja") + zel::mail_charset("ja", "a"),
         "iso-2022-jpShift_JISus-ascii"},
        {zel::transfer_encoding("de", "é"), "quoted-printable"},
        {zel::languages().front() + zel::languages().back(), "enzh_TW"},
        {zel::accepted_languages("de, ja;q=0.5")[1], " ja;q=0.5"},
    };
    for (const row &row : rows)
        EXPECT_EQ(row.in, row.out);
    EXPECT_EQ(zel::languages().size(), 47U);
    EXPECT_EQ(zel::language_id("ja"), 41);
    EXPECT_EQ(zel::language_id("tlh"), std::nullopt);
    EXPECT_LT(zel::compare("sv", "Zebra", "Äpfel"), 0);
    EXPECT_GT(zel::compare_headers("de", "Zebra", "=?utf-8?Q?=C3=84pfel?="), 0);
}

TEST_F(Face, refuses_what_cannot_be_done) {
    const auto nul = "a\0b"s;
    const std::function<void()> calls[] = {
        [] { const zel::library again; },
        [] { zel::convert("a", "utf-8", "not-a-charset"); },
        [&] { zel::convert("a", nul, "utf-8"); },
        [] {
            zel::convert({"", std::size_t{1} << 31}, "utf-8", "utf-16");
        },
        [&] { zel::encode_header("de", nul); },
        [] { zel::encode_body("tlh", "é"); },
        [] { zel::encode_body("de", "é", "not-a-charset"); },
        [] { zel::encode_vcard("de", "é", "not-a-charset"); },
        [] { zel::decode_body("de", "not-a-charset", "a"); },
        [] { zel::date("de", "GMT", std::time_t{1} << 31); },
        [] { zel::date("de", "GMT", 1, "not-a-charset"); },
        [&] { zel::write_header("de", nul); },
        [] { zel::write_header("de", "\xE9"); },
        [] { zel::write_body("de", "\xED\xA0\x80"); },
        [] { zel::write_parameter("de", "a=b; c", "d"); },
        [] { zel::read_header("\xE9", "not-a-charset"); },
    };
    for (std::size_t call = 0; call < std::size(calls); ++call)
        EXPECT_THROW(calls[call](), zel::error) << call;
}

TEST_F(Reader, takes_headers_of_every_mailer) {
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

TEST_F(Reader, takes_parameters_in_every_form) {
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

TEST_F(Reader, takes_bodies_by_a_list_of_charsets) {
    EXPECT_EQ(zel::read_body("ISO-2022-JP", "\x1B$BF|\x1B(B\x1B$BK\\\x1B(B\0"s), "日本\0"s);
    EXPECT_EQ(zel::read_body("utf8", "a\xFF"), "a\uFFFD");
    EXPECT_EQ(zel::read_body("iso-8859-1,1''x", "\xE9"), "é");
    EXPECT_EQ(zel::known_charset("GB2312"), "gb18030");
    EXPECT_EQ(zel::known_charset("iso-8859-15,"), std::nullopt);
    EXPECT_EQ(zel::known_charset(""), std::nullopt);
    for (const auto &known : zel::detail::mail_charsets)
        EXPECT_TRUE(zel::known_charset(known.name)) << known.name;
}

TEST_F(Face, writes_plain_words_and_the_rest_encoded) {
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
        {"de", "", ""},
    };
    for (const auto &row : rows)
        EXPECT_EQ(zel::write_header(row.language, row.text), row.value);
    EXPECT_EQ(zel::write_phrase("de", "Hans Muster"), "Hans Muster");
    EXPECT_EQ(zel::write_phrase("de", "Muster, Hans"), "=?utf-8?Q?Muster=2C_Hans?=");
}

TEST_F(Face, keeps_characters_whole_behind_any_name) {
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

TEST_F(Face, writes_parameters_and_bodies_of_which_nothing_is_lost) {
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

TEST_F(Face, labels_bytes_for_what_they_are_though_nothing_is_converted) {
    gf_ZELStatus = ZEL_STATUS_PASSTHROUGH;
    EXPECT_EQ(zel::write_header("de", "é"), "=?utf-8?B?w6k=?=");
    EXPECT_THROW(zel::write_header("de", "\xE9"), zel::error);
}

} // namespace
