// Received bodies: the charset that is assumed, the direct routes, and the four functions that are one.

#include "support.h"

namespace {

struct body {
    const char *language, *from_charset;
    std::string_view bytes;
    const char *to_charset;
};

auto decoder_of(const body &from) {
    return [=](char *to_buf, int32_t to_size) {
        const exact_buffer bytes(from.bytes);
        return ZEL_InternetMessageBodyLocalToLocalLen(from.language, from.from_charset, 'x', bytes.data(),
                                                      bytes.length(), from.to_charset, to_buf, to_size);
    };
}

std::string decoded(const body &from) {
    return in_two_calls(decoder_of(from), 1);
}

const std::string too_long(121, 'l');

TEST(BodyDecoding, a_body_is_read_in_its_charset_or_in_that_of_the_language) {
    start_library();
    const struct {
        body from;
        std::string text;
        unit_rule may_stop;
    } rows[] = {{{"ja", nullptr, "\x1B$BF|K\\\x1B(Bx", "UTF-8"}, "日本x", is_character_end},
                {{"de", "", "\xA4", "UTF-8"}, "€", is_character_end},
                {{too_long.c_str(), nullptr, "abc", "UTF-8"}, "abc", is_any_end},
                {{nullptr, nullptr, "abc", "us-ascii"}, "abc", is_any_end},
                {{nullptr, "UTF-8", "\xE2\x82", "utf-8"}, "\xE2\x82", is_any_end},
                {{"ko", "iso-8859-1", "\xE9", "euc-kr"}, "\x1A", is_any_end},
                {{"zh", "gb2312", "\xD6\xD0\xD6\xD0", "big5"}, "\xA4\xA4\xA4\xA4", is_any_end},
                {{"ja", nullptr, "", "iso-2022-jp"}, "", is_any_end}};
    for (const auto &row : rows)
        expect_whole_units(decoder_of(row.from), row.text, row.may_stop, 4, 1);
}

TEST(BodyDecoding, two_small_letters_open_the_direct_routes_whose_results_are_repaired) {
    start_library();
    const std::string jis = "\x1B$BF|K\\\x1B(B\xB0", kr = "\x1B$)C\x0E\x30!\x0F\xB0", hz = "~{VP~}\xB0";
    const struct {
        body from;
        std::string text;
    } rows[] = {{{"ja-JP", "iso-2022-jp", jis, "EUC-JP"}, "\xC6\xFC\xCB\xDC?"},
                {{"ja", "ISO-2022-JP", jis, "shift_jis"}, "\x93\xFA\x96{?"},
                {{"ko", "iso-2022-kr", kr, "euc-kr"}, "\xB0\xA1?"},
                {{"zh_TW", "hz-gb-2312", hz, "GB2312"}, "\xD6\xD0?"}};
    for (const auto &[from, text] : rows) {
        expect_whole_units(
            decoder_of(from), text, [](auto &, auto &rest) { return rest.size() % 2 == 1; }, 2, 1);
        for (const char *closed : {"JA", "KO", "ZH", "en", static_cast<const char *>(nullptr)})
            EXPECT_FALSE(decoded({closed, from.from_charset, from.bytes, from.to_charset}).ends_with("?"));
    }
    EXPECT_EQ(decoded({"ja", "iso-2022-jp", "\x0E~", "Shift_JIS"}), "?"); // no kana, and no lead byte
}

TEST(BodyDecoding, zero_bytes_are_kept_by_copies_and_conversions) {
    start_library();
    const std::string zero("a\0\xE9\0", 4);
    for (const auto &[to_charset, text] :
         {std::pair{"ISO-8859-1", zero}, {"UTF-8", std::string("a\0\xC3\xA9\0", 5)}}) {
        const exact_buffer to(13);
        const int32_t length = decoder_of({"en", "iso-8859-1", zero, to_charset})(to.data(), to.length());
        EXPECT_EQ(to.bytes().substr(0, static_cast<std::size_t>(length) + 1), text + '\0');
    }
}

TEST(BodyDecoding, the_size_is_that_of_the_conversion_and_may_fall_short) {
    start_library();
    const struct {
        body from;
        int32_t size;
    } rows[] = {{{"ko", "iso-2022-kr", "abc", "euc-kr"}, 6}, {{nullptr, "iso-2022-kr", "", "euc-kr"}, 0},
                {{"ja", nullptr, "abc", "euc-jp"}, 7},       {{"ja", nullptr, "abc", "Shift_JIS"}, 4},
                {{"de", "UTF-8", "abc", "utf-8"}, 4},        {{"de", "UTF-8", "", "utf-8"}, 1},
                {{"de", nullptr, "abc", "UTF-8"}, 10},       {{"de", "iso-8859-1", "\xE9", "UTF-7"}, 5}};
    for (const auto &row : rows)
        EXPECT_EQ(decoder_of(row.from)(nullptr, -1), row.size);
    const exact_buffer full(5), none(std::size_t{0});
    EXPECT_EQ(decoder_of({"de", "iso-8859-1", "\xE9", "UTF-7"})(full.data(), 5), 5);
    EXPECT_EQ(full.bytes(), "+AOk-");
    EXPECT_EQ(decoder_of({"ko", "iso-2022-kr", "", "euc-kr"})(none.data(), 0), 0);
}

TEST(BodyDecoding, no_converter_is_the_one_error) {
    start_library();
    const exact_buffer to(8);
    for (const body &from : {body{"de", "nonsense", "x", "UTF-8"},
                             {"ko", "iso-2022-kr", "x", "nonsense"},
                             {"zh", nullptr, "", "nonsense"},
                             {"ja", "nonsense", "x", "euc-jp"}})
        for (const int32_t to_size : {-1, 8})
            EXPECT_EQ(decoder_of(from)(to.data(), to_size), -5);
    EXPECT_TRUE(to.untouched());
}

TEST(BodyDecoding, needs_a_started_library_and_takes_only_the_direct_routes_in_passthrough) {
    for (const char *from_charset : {"UTF-8", static_cast<const char *>(nullptr)})
        EXPECT_DEATH(decoder_of({"de", from_charset, "x", "UTF-8"})(nullptr, -1), "NOT_INITIALIZED");
    start_library();
    gf_ZELStatus = ZEL_STATUS_PASSTHROUGH;
    EXPECT_EQ(decoded({"ja", nullptr, "\x1B$BF|\x1B(B", "euc-jp"}), "\xC6\xFC");
    EXPECT_EQ(decoded({"ja", nullptr, "\x1B$BF|\x1B(B", "UTF-8"}), "\x1B$BF|\x1B(B");
}

} // namespace
