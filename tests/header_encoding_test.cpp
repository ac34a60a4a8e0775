// Header values on their way out: the wire form byte for byte, its size, and what becomes of it in a buffer
// that is too small.

#include "support.h"

namespace {

// Calls the encoder with a text that ends at its terminator and that has to be as before afterwards.
auto encoder_of(const char *language, const char *from_charset, const std::string &value) {
    return [=](char *to_buf, int32_t to_size) {
        const exact_buffer text = exact_string(value);
        const int32_t length =
            ZEL_LocalToInternetMessageHeader(language, from_charset, text.data(), to_buf, to_size);
        EXPECT_EQ(text.text(), value);
        return length;
    };
}

std::string encoded(const char *language, const char *from_charset, const std::string &value) {
    return in_two_calls(encoder_of(language, from_charset, value));
}

// Plain text may stop anywhere, a word behind its end, and a fold only with something behind it.
bool is_word_end(const std::string &written, const std::string &) {
    const std::size_t opening = std::max(written.rfind("?Q?") + 1, written.rfind("?B?") + 1);
    const bool folded = written.ends_with("\r\n ") || written.ends_with("\r\n\t");
    return !folded && (opening == 0 || written.find("?=", opening + 2) != std::string::npos);
}

struct row {
    const char *language, *from_charset;
    std::string text, wire;
};

void expect_rows(const std::vector<row> &rows) {
    for (const auto &[language, from_charset, text, wire] : rows) {
        SCOPED_TRACE(text);
        expect_whole_units(encoder_of(language, from_charset, text), wire, is_word_end, 90);
    }
}

TEST(HeaderEncoding, plain_text_and_text_of_no_known_language_go_out_as_they_are) {
    start_library();
    const std::string line(200, 'x');
    expect_rows({{"ja", "UTF-8", line, line},
                 {"de", "UTF-8", " =x?= ", " =x?= "},
                 {nullptr, "UTF-8", "\xE9 x", "\xE9 x"},
                 {"", "UTF-8", "\xE9", "\xE9"},
                 {"en-US", "nonsense", "\xE9\r\n\xE9", "\xE9\r\n\xE9"}});
    EXPECT_EQ(encoder_of("ja", "UTF-8", line)(nullptr, -1), 201);
    EXPECT_EQ(encoder_of("ja", "UTF-8", "")(nullptr, -1), 0);
    const exact_buffer to(1);
    EXPECT_EQ(ZEL_UTF8ToInternetMessageHeader("ja", nullptr, to.data(), 1), 0);
    EXPECT_EQ(to.text(), "");
}

TEST(HeaderEncoding, most_languages_turn_the_whole_value_into_q_words) {
    start_library();
    const std::string opening = "=?iso-8859-15?Q?", next = "?=\r\n\t" + opening;
    const std::string letters(60, 'x'), x = '\xE9' + letters.substr(4),
                                        wire = opening + "=E9" + letters.substr(4);
    expect_rows(
        {{"de", "iso-8859-1", "Gr\xFC\xDF\x65 aus K\xF6ln", "=?iso-8859-15?Q?Gr=FC=DFe_aus_K=F6ln?="},
         {"zh", "gb2312", "\xD6\xD0 a", "=?gb2312?Q?=D6=D0_a?="},
         {"th", "tis-620", "\xA1", "=?tis-620?Q?=A1?="},
         {"fr", "iso-8859-15", repeated("\xE9", 20), opening + repeated("=E9", 20) + "?=\r\n"},
         {"fr", "iso-8859-15", x, wire + "?="},
         {"fr", "iso-8859-15", x + "x", wire + "x?=\r\n"},
         {"fr", "iso-8859-15", x + " y", wire + "_" + next + "y?="},
         {"fr", "iso-8859-15", x + "\xE9\n", wire + "=E9" + next + "\r\n?="},
         {"fr", "iso-8859-15", "\xE9\n" + letters + "x", opening + "=E9\r\n" + letters + next + "x?="},
         {"fr", "iso-8859-15", "\xE9 \t!\"#$%&'()*+,-./09:;<",
          opening + "=E9__!=22=23=24=25=26=27=28=29*+=2C-=2E/09=3A=3B=3C?="},
         {"fr", "iso-8859-15", "=>?@AZ[\\]^_`az{|}~\x7F\xE9",
          opening + "=3D=3E=3F=40AZ=5B=5C=5D=5E=5F=60az=7B=7C=7D=7E=7F=E9?="},
         {"de", "nonsense", "\xE9", "=?iso-8859-15?Q?=E9?="}});
}

TEST(HeaderEncoding, japanese_runs_become_b_words_amid_plain_text) {
    start_library();
    const std::string ja = "=?iso-2022-jp?B?GyRC", fold = "\r\n ", letters(40, 'a');
    const std::string thirteen = ja + repeated("JCIkIiQi", 4) + "JCIbKEI=?=";
    expect_rows(
        {{"ja", "UTF-8", "Hello 日本語", "Hello " + ja + "RnxLXDhsGyhC?="},
         {"ja", "UTF-8", repeated("あ", 13), thirteen},
         {"ja", "UTF-8", repeated("あ", 14),
          ja + "JCIkIiQiJCIkIiQiJCIkIhsoQg==?=" + fold + ja + "JCIkIiQiJCIkIiQiGyhC?="},
         {"ja", "euc-jp", repeated("\xA4\xA2", 13), thirteen},
         {"ja", "euc-jp", "abc" + repeated("\xA4\xA2", 12),
          "abc" + fold + ja + repeated("JCIkIiQi", 4) + "GyhC?="},
         {"ja", "UTF-8", letters + " " + repeated("あ", 13) + "b", letters + " " + fold + thirteen + "b"},
         {"ja", "Shift_JIS", repeated("\x82\xA0", 13) + "\xB1",
          ja + repeated("JCIkIiQi", 4) + "GyhC?=" + fold + ja + "JCIbKEIa?="},
         // the cut splits a pair, and its trail byte is plain text
         {"ja", "Shift_JIS", '\xB1' + repeated("\x83\\", 13),
          "=?iso-2022-jp?B?GhskQiU9JT0lPSU9JT0lPSU9JT0lPSU9JT0bKEIa?=" + fold + "\\" + ja + "JT0bKEI=?="},
         {"ja", "nonsense", "\xA4\xA2 \xA4\xA4", "=?iso-2022-jp?B?pKI=?= =?iso-2022-jp?B?pKQ=?="}});
}

TEST(HeaderEncoding, korean_and_chinese_runs_become_b_words_of_their_own_length) {
    start_library();
    const std::string ko = "=?euc-kr?B?", b0 = "sLCwsLCwsLCwsLCwsLCwsLCwsLCwsLCwsLCwsLCwsL", fold = "\r\n ";
    expect_rows({{"ko", "EUC-KR", repeated("\xB0", 35), ko + b0 + "CwsLA=?="},
                 {"ko", "EUC-KR", repeated("\xB0", 36), ko + b0 + "CwsA==?=" + fold + ko + "sLA=?="},
                 {"ko", "UTF-8", repeated("가", 17), ko + repeated("sKGwobCh", 5) + "sKGwoQ==?="},
                 {"ko", "UTF-8", repeated("가", 18),
                  ko + repeated("sKGwobCh", 3) + "sKGwoQ==?=" + fold + ko + "sKGwobChsKGwobChsKE=?="},
                 {"zh-CN", "UTF-8", "a中", "a=?gb2312?B?1tA=?="},
                 {"zh_CN", "gb2312", "\xD6\xD0", "=?gb2312?B?1tA=?="},
                 {"zh-TW", "big5", "\xA4@\xA4", "=?big5?B?pECk?="},
                 {"zh_TW", "big5", "\xA4@", "=?big5?B?pA==?=@"},
                 {"zh-TW", "UTF-8", "中@", "=?big5?B?pKQ=?=@"}});
}

TEST(HeaderEncoding, plain_text_is_folded_behind_column_60_at_a_blank_which_is_repeated) {
    start_library();
    const std::string sixty(60, 'a'), han = "한", word = "=?euc-kr?B?x9E=?=";
    expect_rows({{"ko", "UTF-8", sixty + " abc" + han, sixty + " \r\n abc" + word},
                 {"ko", "UTF-8", sixty + "\tabc" + han, sixty + "\t\r\n\tabc" + word},
                 {"ko", "UTF-8", sixty + sixty + han, sixty + sixty + "\r\n " + word},
                 {"ko", "UTF-8", sixty.substr(3) + "\r\na b" + han, sixty.substr(3) + "\r\na \r\n b" + word},
                 {"ko", "UTF-8", sixty.substr(1) + " b" + han, sixty.substr(1) + " b\r\n " + word},
                 {"ko", "UTF-8", han + sixty + " ", word + sixty + " \r\n "}});
}

TEST(HeaderEncoding, the_size_is_the_formula_where_that_is_enough_and_else_the_need) {
    start_library();
    EXPECT_EQ(encoder_of("de", "UTF-8", std::string(500, 'x') + "é")(nullptr, -1), 4 * (502 + 1) + 11 + 8);
    const std::string word = "=?iso-8859-15?Q?" + repeated("=E9", 20) + "?=\r\n";
    EXPECT_EQ(encoded("fr", "iso-8859-15", repeated("\xE9", 5000)), repeated(word + "\t", 249) + word);
    EXPECT_EQ(encoded("yi", "UTF-16BE", repeated("\x8A\x9E", 6) + "\x8A"),
              "=?utf-8?Q?" + repeated("=E8=AA=9E", 6) + "=EF=BF?=\r\n\t=?utf-8?Q?=BD?=");
}

TEST(HeaderEncoding, needs_a_started_library_and_words_carry_the_bytes_as_they_are_in_passthrough) {
    for (const char *value : {"", "x"})
        EXPECT_DEATH(encoded("de", "UTF-8", value), "gf_ZELStatus != ZEL_STATUS_NOT_INITIALIZED");
    start_library();
    gf_ZELStatus = ZEL_STATUS_PASSTHROUGH;
    EXPECT_EQ(encoded("de", "UTF-8", "é"), "=?iso-8859-15?Q?=C3=A9?=");
    EXPECT_EQ(encoded("ja", "UTF-8", "x é"), "x =?iso-2022-jp?B?w6k=?=");
}

} // namespace
