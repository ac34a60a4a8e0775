// Whole strings between charsets: the road through the local charset, mailbox names, the test of UTF-8 by its
// shape, and escapes.

#include "support.h"

namespace {

const std::string over_long(10000, 'x');

TEST(Strings, are_converted_or_come_back_as_a_copy) {
    const struct {
        const char *from_charset, *to_charset, *in, *out;
    } rows[] = {
        {"utf-8", nullptr, "caf\xC3\xA9", "caf\xE9"},
        {"iso-8859-1", "ISO-8859-1", "caf\xE9", "caf\xE9"},
        {"big5", "gb2312", "\xB0\xEA", "\xB9\xFA"},
        {nullptr, "utf-8", "abc", "(null)"},
        {nullptr, "utf-8", "", ""},
        {"", "utf-8", "\xE9", "\xE9"},
        {"no such", "utf-8", "\xE9", "\xE9"},
        {"iso-8859-1", "", "\xE9", "\xE9"},
        {over_long.c_str(), over_long.c_str(), "\xE9", "\xE9"},
        {"iso-8859-1", over_long.c_str(), "\xE9", "\xE9"},
        {"iso-8859-1", "utf-16", "\xE9", "\xE9"}, // the byte order mark is more than the size rule provides
        {"utf-8", "us-ascii", "a\xE2\x82\xAC", "a\x1A"}};
    start_library();
    EXPECT_EQ(taken(ZEL_LocalToLocal(nullptr, "utf-8", "utf-8")), "(null)");
    for (const auto &[from_charset, to_charset, in, out] : rows)
        EXPECT_EQ(taken(ZEL_LocalToLocal(exact_string(in).data(), from_charset, to_charset)), out) << in;
}

TEST(Strings, have_the_local_charset_where_none_is_named) {
    start_library();
    EXPECT_EQ(taken(ZEL_LocalToUTF8("\xE9", nullptr)), "\xC3\xA9");
    EXPECT_EQ(taken(ZEL_UTF8ToLocal("\xC3\xA9", nullptr)), "\xE9");
    EXPECT_EQ(taken(ZEL_LocalToMUTF7("\xE9", "")), "\xE9");
    EXPECT_EQ(taken(ZEL_LocalToMUTF7("Entw\xFCrfe & \xE9", nullptr)), "Entw&APw-rfe &- &AOk-");
    EXPECT_EQ(taken(ZEL_MUTF7ToLocal("Entw&APw-rfe &- &AOk-", nullptr)), "Entw\xFCrfe & \xE9");
    EXPECT_EQ(taken(ZEL_LocalToMUTF7("台北/\xF0\x9F\x98\x80", "utf-8")), "&U,BTFw-/&2D3eAA-");
}

// A text in its own charset comes back unchanged, so what the result shows is the test of the shape alone.
TEST(Utf8, is_known_by_its_shape_and_else_loses_its_high_bytes) {
    start_library();
    const char *const rows[][2] = {
        {"abc\xE9x", "abc?x"},
        {"\xC3\xA9\xA9", "???"},
        {"\xE4\xB8", "\xE4\xB8"},
        {"\xE4\xC3\xA9", "???"},
        {"\xC0\x80\xED\xA0\x80", "\xC0\x80\xED\xA0\x80"},
        {"\xF7\x80\x80\x80\xF8\x80\x80\x80\x80.", "\xF7\x80\x80\x80\xF8\x80\x80\x80\x80."},
        {"\xFC\x80\x80\x80\x80\x80.", "\xFC\x80\x80\x80\x80\x80."},
        {"\xFC\x80\x80\x80\x80.", "?????."}};
    for (const auto &[in, out] : rows)
        EXPECT_EQ(taken(ZEL_UTF8ToLocal(exact_string(in).data(), "utf-8")), out);
    for (int byte = 1; byte < 256; ++byte) {
        const std::string text(1, static_cast<char>(byte));
        const bool never_first = (byte >= 0x80 && byte <= 0xBF) || byte >= 0xFE;
        EXPECT_EQ(taken(ZEL_UTF8ToLocal(text.c_str(), "utf-8")), never_first ? "?" : text);
    }
}

TEST(Escapes, are_written_for_each_unit_of_UTF16) {
    const struct {
        const char *in, *by_icu, *own;
    } rows[] = {
        {"plain\t\n ~", "plain\t\n ~", "plain\t\n ~"},
        {"\r\x7F\x01", "\r\x7F\x01", "\\u000D\\u007F\\u0001"},
        {"a\xC2\xAD\xE2\x80\x8D", "a\\u00AD\\u200D", "a\\u00AD\\u200D"}, // seen by no reader, and kept
        {"\xF0\x9F\x98\x80", "\\uD83D\\uDE00", "\\uD83D\\uDE00"},
        {"\\u0041", "\\u0041", "\\u0041"},
        {"\xE4\xB8\x80\r\xFF", "\\u4E00\r\\uFFFD", "\xE4\xB8\x80\r\xFF"},
        {"", "", ""}};
    start_library();
    for (const auto &row : rows) {
        EXPECT_EQ(taken(ZEL_UTF8ToEscapedUnicode(exact_string(row.in).data(), 0)), row.by_icu);
        for (const int mode : {1, -1, INT32_MIN})
            EXPECT_EQ(taken(ZEL_UTF8ToEscapedUnicode(exact_string(row.in).data(), mode)), row.own);
    }
    EXPECT_EQ(taken(ZEL_UTF8ToEscapedUnicode(nullptr, 0)), "(null)");
}

TEST(Strings, need_the_start_only_where_there_is_something_to_convert) {
    EXPECT_EQ(taken(ZEL_LocalToLocal("", nullptr, nullptr)), "");
    EXPECT_EQ(taken(ZEL_LocalToLocal("a", nullptr, nullptr)), "(null)");
    EXPECT_EQ(taken(ZEL_LocalToUTF8("a", "")), "a");
    EXPECT_EQ(taken(ZEL_UTF8ToLocal("a\xE9z", "")), "a?z");
    EXPECT_EQ(taken(ZEL_UTF8ToLocal(nullptr, nullptr)), "(null)");
    EXPECT_EQ(taken(ZEL_UTF8ToEscapedUnicode("", 1)), "");
    const char *not_started = "zel: .*gf_ZELStatus != ZEL_STATUS_NOT_INITIALIZED";
    EXPECT_DEATH(ZEL_UTF8ToLocal("a", ""), not_started);
    EXPECT_DEATH(ZEL_UTF8ToEscapedUnicode("a", 1), not_started);
}

TEST(Passthrough, hands_back_strings_but_still_tests_UTF8_and_knows_charsets) {
    const char *text = "a\xC3\xA9";
    start_library();
    gf_ZELStatus = ZEL_STATUS_PASSTHROUGH;
    for (char *result : {ZEL_UTF8ToLocal(text, "iso-8859-1"), ZEL_LocalToMUTF7(text, nullptr),
                         ZEL_UTF8ToEscapedUnicode(text, 0), ZEL_UTF8ToEscapedUnicode(text, 1)})
        EXPECT_EQ(taken(result), text);
    EXPECT_EQ(taken(ZEL_UTF8ToLocal("a\xE9z", "utf-8")), "a?z");
    EXPECT_EQ(taken(ZEL_LocalToLocal(text, nullptr, "utf-8")), "(null)");
    EXPECT_EQ(ZEL_EncodingConverterExists("iso-8859-1", "utf-8"), 1);
    EXPECT_EQ(ZEL_EncodingConverterExists("no such", "utf-8"), 0);
}

} // namespace
