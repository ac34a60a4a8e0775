// The C++ face as a host sees it: what each function gives, and what it refuses. What GMime and Python read
// of it stands in neighbours_test.py.

#include "zel.hpp"

#include <gtest/gtest.h>

#include <functional>

using namespace std::string_literals;

namespace {

class Face : public testing::Test {
    const zel::library library_{"/nowhere"};
};

struct row {
    std::string in, out;
};

TEST_F(Face, hides_sizes_copies_and_terminators) {
    const row rows[] = {
        {zel::convert("a\0\xE9"s, "iso-8859-1", "utf-8"), "a\0é"s},
        {zel::convert("\x82\xA0\x61\x82\xA0\x61\x82\xA0", "Shift_JIS", "iso-2022-jp"),
         "\x1B$B$\"\x1B(Ba\x1B$B$\"\x1B(Ba\x1B$B$\"\x1B(B"},
        {zel::convert("", "utf-8", "iso-2022-kr"), ""},
        {zel::convert_directly(sjis2jis, "\x93\xFA"), "\x1B$BF|\x1B(B"},
        {zel::decode_mailbox(zel::encode_mailbox("Entwürfe")), "Entwürfe"},
        {zel::local_to_utf8(zel::utf8_to_local("é")), "é"},
        {zel::escape_unicode("é\r", true), "\\u00E9\\u000D"},
        {zel::encode_header("de", "üüüüüüüüüüüüüüüüüüüü"),
         "=?iso-8859-15?Q?=FC=FC=FC=FC=FC=FC=FC=FC=FC=FC=FC=FC=FC=FC=FC=FC=FC=FC=FC=FC?="},
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
        [] { zel::convert(std::string_view("", std::size_t{1} << 31), "utf-8", "utf-16"); },
        [&] { zel::encode_header("de", nul); },
        [] { zel::encode_body("tlh", "é"); },
        [] { zel::encode_body("de", "é", "not-a-charset"); },
        [] { zel::encode_vcard("de", "é", "not-a-charset"); },
        [] { zel::decode_body("de", "not-a-charset", "a"); },
        [] { zel::date("de", "GMT", 1, "not-a-charset"); },
        [&] { zel::write_header("de", nul); },
        [] { zel::write_header("de", "\xE9"); },
        [] { zel::write_body("de", "\xED\xA0\x80"); },
        [] { zel::write_parameter("de", "a=b; c", "d"); },
        [] { zel::read_header("\xE9", "not-a-charset"); },
    };
    for (std::size_t call = 0; call < std::size(calls); ++call)
        EXPECT_THROW(calls[call](), zel::error) << call;
    const auto late = static_cast<std::time_t>(std::int64_t{1} << 31);
    if (late > 0) { // it has more than 32 bits
        EXPECT_THROW(zel::date("de", "GMT", late), zel::error);
    }
}

} // namespace
