// Extended parameters, written in segments and read from one value.

#include "support.h"

namespace {

auto encoder_of(const char *language, const char *from_charset, const std::string &value,
                const std::string &name = "filename") {
    return [=](char *to_buf, int32_t to_size) {
        const exact_buffer text = exact_string(value);
        return ZEL_LocalToRFC2231(language, name.c_str(), from_charset, text.data(), to_buf, to_size);
    };
}

auto decoder_of(const std::string &value, const char *to_charset) {
    return [=](char *to_buf, int32_t to_size) {
        const exact_buffer text = exact_string(value);
        return ZEL_RFC2231ToLocal("fr", text.data(), to_charset, to_buf, to_size);
    };
}

TEST(RFC2231, a_short_value_is_one_labelled_line) {
    start_library();
    const struct {
        const char *language, *from_charset;
        std::string text, line;
    } rows[] = {{"fr", "iso-8859-1", "t\xE9te.txt", "iso-8859-15'fr't%E9te.txt"},
                {"fr", "UTF-8", "a b", "us-ascii'fr'a%20b"},
                {nullptr, "UTF-8", "\xC3\xA9", "''%C3%A9"},
                {"", "UTF-8", "\xC3\xA9", "us-ascii''%1A"},
                {"fr", nullptr, "\xC3\xA9", "iso-8859-15'fr'%C3%A9"},
                {"fr", "nonsense", "\xC3\xA9", "iso-8859-15'fr'%C3%A9"},
                {"en", "us-ascii", "AZaz09!#$&+-.^_`{|}~", "us-ascii'en'AZaz09!#$&+-.^_`{|}~"},
                {"x'y", "us-ascii", "\x01%'*()/\"\\\x7F", "us-ascii'x'y'%01%25%27%2A%28%29%2F%22%5C%7F"}};
    for (const auto &row : rows) {
        const auto call = encoder_of(row.language, row.from_charset, row.text);
        expect_whole_units(call, "\tfilename*0*=" + row.line, is_triple_end<'%'>, 40);
    }
}

TEST(RFC2231, long_values_are_cut_behind_triples_and_quoted_behind_the_last_one) {
    start_library();
    const auto x = [](std::size_t times) { return std::string(times, 'x'); };
    const std::string ascii = "\tfilename*0*=us-ascii'en'", latin = "\tfilename*0*=iso-8859-15'en'";
    const std::string next = ";\r\n\tfilename*", quoted_y = next + "1=\"y\"";
    const struct {
        std::string text, parameter;
    } rows[] = {{x(40), ascii + x(40)},
                {x(41), ascii + x(41) + next + "1=\"\""},
                {x(41) + " y", ascii + x(41) + "%20" + quoted_y},
                {x(39) + " y", ascii + x(39) + "%20" + quoted_y},
                {x(39) + "A9y", ascii + x(39) + "A9" + quoted_y},
                {repeated("\xE9", 32),
                 latin + repeated("%E9", 13) + next + "1*=" + repeated("%E9", 18) + next + "2*=%E9"},
                {'\xE9' + x(80) + '\xE9' + x(80), latin + "%E9" + x(35) + next + "1*=" + x(45) + "%E9" +
                                                      x(5) + next + "2=\"" + x(53) + "\"" + next + "3=\"" +
                                                      x(22) + "\""}};
    for (const auto &row : rows)
        expect_whole_units(encoder_of("en", "iso-8859-15", row.text), row.parameter, is_triple_end<'%'>, 40);
}

TEST(RFC2231, values_are_read) {
    start_library();
    const std::string c32(32, 'c'), c40(40, 'c');
    const struct {
        std::string value;
        const char *to_charset;
        std::string text;
    } rows[] = {{"iso-8859-15'fr't%E9te.txt", "iso-8859-15", "t\xE9te.txt"},
                {"ISO-8859-15''%a4", "UTF-8", "€"},
                {"abc%20def+\xE9", "UTF-8", "abc def+\xE9"},
                {"''%E9", "UTF-8", "\xE9"},
                {"nonsense'x'%E9", "UTF-8", "\xE9"},
                {"a'%41", "UTF-8", "a'A"},
                {"us-ascii''%4%", "UTF-8", "?"},
                {"%4", "UTF-8", "%4"},
                {"a%g0%0gb%00c", "UTF-8", "a??b"},
                {c40 + "'en'x", "UTF-8", "en'x"},
                {"utf-8'0123456789'x", "UTF-8", "x"},
                {"utf-8'0123456789a'x", "UTF-8", "'x"},
                {c32 + "''x", "UTF-8", "x"},
                {c32 + "'", "UTF-8", c32 + "'"}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.value);
        expect_whole_units(decoder_of(row.value, row.to_charset), row.text, is_character_end, 4);
    }
    EXPECT_EQ(in_two_calls(decoder_of("utf-8'de'%C3%A9", nullptr)), "\xE9");
    EXPECT_EQ(in_two_calls(decoder_of("utf-8''%E2%82%AC", "UTF-8")), "€"); // a copy, which is cut at a byte
}

TEST(RFC2231, no_value_is_an_empty_text_even_where_the_size_is_asked_for) {
    for (const char *text : {"", static_cast<const char *>(nullptr)})
        for (const int32_t to_size : {-1, 0, 1}) {
            const exact_buffer first(1), second(1);
            EXPECT_EQ(ZEL_LocalToRFC2231("fr", "name", "UTF-8", text, first.data(), to_size), 0);
            EXPECT_EQ(ZEL_RFC2231ToLocal("fr", text, "UTF-8", second.data(), to_size), 0);
            EXPECT_EQ(first.text() + second.text(), "");
        }
}

TEST(RFC2231, the_size_is_the_formula_where_that_is_enough_and_else_the_need) {
    start_library();
    EXPECT_EQ(encoder_of("en", "UTF-8", "text")(nullptr, -1), 3 * 4 + 8 + 40);
    EXPECT_EQ(decoder_of("utf-8''text", "UTF-8")(nullptr, -1), 2 * 11);
    for (std::size_t length = 1; length < 70; ++length) { // long names leave no room for the value
        const std::string lines =
            in_two_calls(encoder_of("fr", "UTF-8", repeated("é", 500), std::string(length, 'n')));
        EXPECT_EQ(std::count(lines.begin(), lines.end(), '%'), 500) << lines;
    }
    EXPECT_EQ(in_two_calls(encoder_of("ru", "UTF-8", "Ж")), "\tfilename*0*=iso-8859-5'ru'%B6");
    EXPECT_EQ(in_two_calls(decoder_of("tis-620''" + repeated("\xA1", 1000), "UTF-8")), repeated("ก", 1000));
}

TEST(RFC2231, needs_a_started_library_where_there_is_something_to_convert_and_passthrough_copies) {
    const exact_buffer to(100);
    const auto encode = encoder_of("fr", "UTF-8", "é");
    EXPECT_EQ(encode(nullptr, -1), 3 * 2 + 8 + 40);
    EXPECT_DEATH(encode(to.data(), 100), "gf_ZELStatus != ZEL_STATUS_NOT_INITIALIZED");
    EXPECT_DEATH(decoder_of("utf-8''x", "UTF-8")(to.data(), 100), "gf_ZELStatus != ZEL_STATUS_NOT_INIT");
    EXPECT_EQ(in_two_calls(encoder_of(nullptr, "UTF-8", "a")), "\tfilename*0*=''a");
    EXPECT_EQ(in_two_calls(decoder_of("a%20b", "UTF-8")), "a b");
    start_library();
    gf_ZELStatus = ZEL_STATUS_PASSTHROUGH;
    EXPECT_EQ(in_two_calls(encode), "\tfilename*0*=iso-8859-15'fr'%C3%A9");
    EXPECT_EQ(in_two_calls(decoder_of("utf-8''%C3%A9", "iso-8859-1")), "é");
}

} // namespace
