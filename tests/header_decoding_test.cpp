// Received header values: what is decoded, what comes out as it came in, and what is done to the value
// itself.

#include "support.h"

#include <random>

namespace {

// Calls the decoder with a value that ends at its terminator; asking for the size leaves it as it is.
auto decoder_of(const char *language, const std::string &value, const char *to_charset,
                int32_t from_len = -1) {
    return [=](char *to_buf, int32_t to_size) {
        const exact_buffer text = exact_string(value);
        const int32_t length =
            ZEL_InternetMessageHeaderToLocalLen(language, text.data(), from_len, to_charset, to_buf, to_size);
        EXPECT_TRUE(to_size >= 0 || text.text() == value);
        return length;
    };
}

std::string decoded(const char *language, const std::string &value, const char *to_charset = "UTF-8") {
    return in_two_calls(decoder_of(language, value, to_charset), 1);
}

struct row {
    std::string value, text;
};

void expect_rows(const char *language, const char *to_charset, const std::vector<row> &rows,
                 unit_rule may_stop = is_character_end) {
    for (const auto &[value, text] : rows) {
        SCOPED_TRACE(value);
        expect_whole_units(decoder_of(language, value, to_charset), text, may_stop, 40, 1);
    }
}

TEST(HeaderDecoding, words_are_decoded_and_converted) {
    start_library();
    const std::string six_charsets = "=?iso-8859-1?Q?=FC?==?windows-1252?Q?=80?==?utf-8?Q?=C3=A9?="
                                     "=?ISO-8859-1?Q?=E4?==?us-ascii?Q?a?==?utf-7?Q?+AOk-?=";
    expect_rows("de", "UTF-8",
                {{"=?iso-8859-1?Q?Gr=FC=dfe_?= x", "Grüße  x"},
                 {six_charsets + six_charsets, "ü€éäaéü€éäaé"},
                 {"=?ISO-8859-1*en?q?a?==?windows-1252?b?gA==?=", "a€"},
                 {"=?*?Q?x?==??Q?y?=", "xy"},
                 {"=?utf-8*0123456789?Q?x?=", "x"},
                 {"=?utf-8?Q?a=?= =?utf-8?Q?=4?= =?utf-8?Q?=4Gx?=", "a= =4 @x"},
                 {"=?us-ascii?Q?=G4=gg|?=", std::string("\x04")},
                 {"=?utf-8?B?Y!==?= =?utf-8?B?Y_Jj?= =?utf-8?B?YW Jj?=", "` `\x02\x63 a`\t"},
                 {"=?utf-8?B?YQBi?=c=?utf-8?Q?d=00e?=f", "acdf"}});
}

TEST(HeaderDecoding, what_is_not_admitted_or_not_convertible_comes_out_encoded) {
    start_library();
    expect_rows("fr", "UTF-8",
                {{"x =?iso-8859-2?Q?abc=E9?= y", "x abc=E9 y"},
                 {"=?iso-8859-1?Q?=E9?==?iso-8859-2?Q?=E9?==?iso-8859-1?Q?=E9?=", "é=E9é"},
                 {"=?iso-8859-15?B?YWJj?=", "YWJj"},
                 {"=?utf-8?X?abc?=", "abc"}});
    expect_rows("fr", "nonsense", {{"=?utf-8?Q?=41?=b", "=41b"}, {"=?NONSENSE?Q?=41?=", "=41"}});
    expect_rows("xx", "UTF-8", {{"=?us-ascii?Q?=41?= =?utf-7?Q?+AOk-?=", "=41 é"}});
}

TEST(HeaderDecoding, a_word_that_does_not_parse_ends_the_decoding) {
    start_library();
    const std::string field(32, 'c'), valid = " =?utf-8?Q?=41?=";
    std::vector<row> rows = {{"=?" + field + "?Q?=41?=", "=41"}};
    for (const std::string broken : {"a =? b", "=?cccccccccccccccccccccccccccccccc!?Q?x?=",
                                     "=?utf-8*01234567890?Q?x?=", "=?utf-8?QQ?x?="})
        rows.push_back({broken + valid, broken + valid});
    for (const std::string cut_off : {"=?", "=?utf-8", "=?utf-8*", "=?utf-8?Q", "=?utf-8?Q?\xE9"})
        rows.push_back({cut_off, cut_off});
    expect_rows("en", "iso-8859-1", rows);
}

TEST(HeaderDecoding, folds_are_taken_out_in_place_with_the_blanks_before_a_word) {
    start_library();
    const struct {
        std::string folded, unfolded, text;
    } rows[] = {{"a\r\n b\r\n\t \tc", "a b\t \tc", "a b\t \tc"},
                {"a \r\n \t=?utf-8?Q?b?=\r\n =?utf-8?Q?c?=", "a =?utf-8?Q?b?==?utf-8?Q?c?=", "a bc"},
                {"a\r\nb\r c\n d\r\n", "a\r\nb\r c\n d\r\n", "a\r\nb\r c\n d\r\n"},
                {"a\r\n \r\n =?utf-8?Q?b\r\n c?=", "a =?utf-8?Q?b c?=", "a b c"},
                {"=?utf-8?Q?=4\r\n =?utf-8?Q?1?=", "=?utf-8?Q?=4=?utf-8?Q?1?=", "@?utf-8?Q?1"}};
    for (const auto &row : rows) {
        const exact_buffer value = exact_string(row.folded), to(row.text.size() + 1);
        EXPECT_EQ(ZEL_InternetMessageHeaderToUTF8("en", value.data(), to.data(), to.length()),
                  to.length() - 1);
        EXPECT_EQ(to.text(), row.text);
        EXPECT_EQ(value.text(), row.unfolded);
        EXPECT_EQ(decoded("en", row.folded), row.text);
    }
}

// Pieces by chance behind each other, so that each stands at every place of a block.
void expect_pieces(const std::string &opening, const std::string &closing, const std::vector<row> &pieces,
                   const std::vector<row> &ends) {
    std::mt19937 random;
    for (int turn = 0; turn < 3000; ++turn) {
        row whole = {opening, ""};
        for (auto count = random() % 40; count > 0; --count) {
            const row &piece = pieces[random() % pieces.size()];
            whole = {whole.value + piece.value, whole.text + piece.text};
        }
        const row &end = ends[random() % ends.size()];
        ASSERT_EQ(decoded("en", whole.value + end.value + closing, "iso-8859-1"), whole.text + end.text);
    }
}

TEST(HeaderDecoding, texts_of_words_and_folds_are_read_alike_wherever_they_stand) {
    start_library();
    const std::string run(50, 'x');
    expect_pieces(
        "=?iso-8859-1?Q?", "?=.",
        {{"x", "x"}, {run, run}, {"=41", "A"}, {"_=e9=E9", " \xE9\xE9"}, {"==4", "\x04"}, {"=4=", "@"}},
        {{"", "."}, {"=", "=."}, {"=_", "=_."}, {"==", "==."}, {"=00x", "."}, {"x=gGx_x=41", "x."}});
    expect_pieces("=?iso-8859-1?B?", "?=.",
                  {{"YWJj", "abc"}, {"//79", "\xFF\xFE\xFD"}, {"YQ==", "a"}, {"Y!=x", "`"}, {"YWI=", "ab"}},
                  {{"", "."}, {"YWJ", "."}, {"YQBi", "a."}, {"YWIAYWJj", "ab."}, {"=WJjYWJj", "\1bcabc."}});
    expect_pieces("", "", {{"x", "x"}, {run, run}, {"\r\n b", " b"}, {"\r\n\t=?utf-8?Q?a?=", "a"}},
                  {{"", ""}});
}

TEST(HeaderDecoding, the_tail_alone_is_read_by_language) {
    start_library();
    const std::string jis = "\x1B$BF|K\\\x1B(B";
    expect_rows("en", "iso-8859-1", {{"\xE9=?utf-8?Q?x?=\xE9", "\xE9x?"}, {"\xE9", "?"}});
    expect_rows("ja-x", "UTF-8", {{jis, "日本"}, {jis + "=?utf-8?Q?x?= " + jis, jis + "x 日本"}, {"", ""}});
    expect_rows("ja", "EUC-JP", {{jis, "\xC6\xFC\xCB\xDC"}, {"=?iso-2022-jp?B?GyRCRnwbKEI=?=", "\xC6\xFC"}},
                [](auto &written, auto &) { return written.size() % 2 == 0; });
    expect_rows("ja", "shift_jis", {{jis, "\x93\xFA\x96{"}, {"=?iso-2022-jp?B?GyRCRnwbKEI=?=", "\x93\xFA"}},
                [](auto &written, auto &) { return written.size() % 2 == 0; });
    expect_rows("ja", "nonsense", {{jis, jis}});
    expect_rows("JA", "UTF-8", {{jis, jis}});
}

TEST(HeaderDecoding, raw_bytes_pass_where_the_host_wants_them_and_broken_pairs_are_repaired) {
    start_library("/nowhere", {.pass_8bit = 1});
    expect_rows("en", "iso-8859-1", {{"\xE9=?utf-8?Q?x?=\xE9", "\xE9x\xE9"}});
    EXPECT_EQ(decoded("ko", "\xB0 =?euc-kr?B?sA==?=x=?euc-kr?B?sKE=?=\xB0", "euc-kr"), "? ?x\xB0\xA1?");
    EXPECT_EQ(decoded("ko", "\xB0 =?broken \xB0", "euc-kr"), "? =?broken ?");
}

TEST(HeaderDecoding, the_length_bounds_the_words_but_not_the_value) {
    start_library();
    for (const int32_t length : {3, 1023, 1024, 5000}) {
        const std::string raw(static_cast<std::size_t>(length), 'x'), value = "=?utf-8?Q?" + raw + "?= tail";
        EXPECT_EQ(in_two_calls(decoder_of("en", value, "UTF-8", length), 1), raw + " tail");
        EXPECT_EQ(in_two_calls(decoder_of("en", value, "UTF-8", length - 1), 1), value);
    }
}

TEST(HeaderDecoding, the_size_counts_what_each_piece_may_become) {
    start_library();
    const auto size = [](const char *language, const std::string &value, const char *charset = "utf-8") {
        return decoder_of(language, value, charset)(nullptr, -1);
    };
    const std::string text(100, 'x');
    EXPECT_EQ(size("en", "a\r\n b =?utf-8?Q?c=41defg?= h"), 6 + 6 + 2);
    EXPECT_EQ(size("en", "=?iso-8859-1?Q?" + text + "?="), 301);
    EXPECT_EQ(size("en", "=?iso-8859-2?Q?" + text + "?="), 100);
    EXPECT_EQ(size("ja", "\x1B$B" + repeated("F|", 100)), 300);
    EXPECT_EQ(size("en", "=?iso-8859-1?Q?" + text + "?=", "UTF-16"), 2 + 2 * 100);
    EXPECT_EQ(decoded("en", "=?iso-8859-1?Q?=B1?=", "iso-2022-jp"), "\x1B$B!^\x1B(B");
}

TEST(HeaderDecoding, needs_a_started_library_and_decodes_without_converting_in_passthrough) {
    EXPECT_DEATH(decoded("de", "x"), "gf_ZELStatus != ZEL_STATUS_NOT_INITIALIZED");
    start_library();
    gf_ZELStatus = ZEL_STATUS_PASSTHROUGH;
    EXPECT_EQ(decoded("de", "=?iso-8859-1?Q?=E9?="), "\xE9");
    EXPECT_EQ(decoded("ja", "\x1B$BF|\x1B(B", "euc-jp"), "\xC6\xFC");
}

} // namespace
