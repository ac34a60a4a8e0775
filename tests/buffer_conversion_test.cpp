// The size rule and the conversion of buffers: what fits, what turns into a copy of the input, and what is
// left alone, in blocks of every exact size around the result.

#include "support.h"

#include <algorithm>
#include <optional>

namespace {

using namespace std::string_literals;

const std::string over_long(10000, 'x');

TEST(BufferSize, goes_by_the_characters_of_the_charsets_and_counts_the_terminator) {
    const struct {
        const char *from_charset, *to_charset;
        std::int32_t of_four, of_none;
    } rows[] = {{"iso-8859-1", "utf-8", 13, 4},      {"UTF-8", "utf-8", 5, 1},
                {"no such", "utf-8", 5, 1},          {"", over_long.c_str(), 5, 1},
                {"utf-16be", "utf-8", 7, 4},         {"utf-32be", "utf-8", 4, 4},
                {"utf-32be", "us-ascii", 2, 2},      {"iso-2022-jp", "EUC-JP", 9, 1},
                {"ISO-2022-JP", "shift_jis", 5, 1},  {"shift_jis", "iso-2022-jp", 9, 1},
                {"euc-jp", "iso-2022-jp", 9, 1},     {"iso-2022-kr", "euc-kr", 9, 1},
                {"euc-kr", "iso-2022-kr", 33, 9},    {"gb2312", "big5", 9, 3},
                {"utf-8", "escaped_unicode", 25, 7}, {"utf-8", "IMAP-modified-UTF-7", 17, 5}};
    start_library();
    const exact_buffer text = exact_string("abcd"), empty = exact_string("");
    for (const auto &[from_charset, to_charset, of_four, of_none] : rows) {
        SCOPED_TRACE(from_charset + " to "s + to_charset);
        for (const std::int32_t len : {4, -1, INT32_MIN})
            EXPECT_EQ(ZEL_GetResultBufferSize(text.data(), len, from_charset, to_charset), of_four);
        EXPECT_EQ(ZEL_GetResultBufferSize(empty.data(), -1, from_charset, to_charset), of_none);
        EXPECT_EQ(ZEL_GetResultBufferSize(text.data(), 0, from_charset, to_charset), 1);
        if (of_four > 4) {
            EXPECT_EQ(ZEL_GetResultBufferSize("", INT32_MAX, from_charset, to_charset), INT32_MAX);
        }
    }
}

TEST(Buffers, are_asserted_to_be_there_and_to_come_after_the_start) {
    const char *const texts[] = {nullptr, ""};
    char mark, *results[] = {&mark, &mark}, to[8];
    const char *not_started = "zel: .*gf_ZELStatus != ZEL_STATUS_NOT_INITIALIZED";
    EXPECT_DEATH(ZEL_GetResultBufferSize(nullptr, 0, "utf-8", "utf-8"), not_started);
    EXPECT_DEATH(ZEL_ConvertBuffer("utf-8", "utf-8", "", 0, to, 8), not_started);
    EXPECT_DEATH(ZEL_ConvertBufferArray("utf-8", "utf-8", texts, 2, results), not_started);
    EXPECT_DEATH(ZEL_EncodingConverterExists("utf-8", "utf-8"), not_started);
    for (const std::int32_t count : {-1, 0, 1}) // which have no text
        ZEL_ConvertBufferArray("utf-8", "utf-8", texts, count, results);
    ZEL_ConvertBufferArray("utf-8", "utf-8", nullptr, 2, results);
    ZEL_ConvertBufferArray("utf-8", "utf-8", texts, 2, nullptr);
    EXPECT_EQ(std::pair(results[0], results[1]), std::pair(static_cast<char *>(nullptr), &mark));
    start_library();
    EXPECT_DEATH(ZEL_GetResultBufferSize(nullptr, 0, "utf-8", "utf-8"), "zel: .*from_buf!=NULL");
}

struct conversion {
    const char *from_charset, *to_charset;
    std::string in;
    std::optional<std::string> out; // none: the copy of the input
};

// What fits, if only without a terminator, is converted; anything else is a copy, cut where it has to be.
void expect_at_every_size(const conversion &row) {
    const exact_buffer from(row.in);
    const std::size_t need = std::max(row.in.size(), row.out.value_or("").size()) + 1;
    for_every_size(static_cast<std::int32_t>(need), [&](const exact_buffer &to) {
        const bool converts = row.out && row.out->size() <= to.size();
        const std::string result =
            converts ? *row.out : row.in.substr(0, std::max<std::size_t>(to.size(), 1) - 1);
        EXPECT_EQ(ZEL_ConvertBuffer(row.from_charset, row.to_charset, from.data(), from.length(), to.data(),
                                    to.length()),
                  static_cast<std::int32_t>(result.size()));
        EXPECT_EQ(to.bytes().substr(0, result.size() + 1), (result + '\0').substr(0, to.size()));
    });
}

TEST(Buffers, are_converted_where_the_result_fits_and_else_copied) {
    const conversion rows[] = {
        {"iso-8859-1", "utf-8", "caf\xE9\0z"s, "caf\xC3\xA9\0z"s},
        {"utf-8", "iso-8859-1", "caf\xC3\xA9", "caf\xE9"},
        {"utf-8", "iso-8859-1", "\xE2\x82\xAC", "\x1A"},
        {"utf-8", "utf-16be", "a\xFF", "\0a\xFF\xFD"s},
        {"utf-16be", "utf-8", "\0a\0"s, "a\xEF\xBF\xBD"},
        {"utf-8", "UTF-8", "abc\xFF\0z"s, std::nullopt},
        {"no such", "No such", "abc", std::nullopt},
        {"iso-2022-jp", "euc-jp", "\x1B$B0!\x1B(B", "\xB0\xA1"},
        {"euc-jp", "iso-2022-jp", "\xB0\xA1", "\x1B$B0!\x1B(B"},
        {"iso-8859-1", "IMAP-MODIFIED-UTF-7", "\xE9", "&AOk-"},
        {"utf-8", "Escaped_Unicode", "\xC3\xA9\\", "\\u00E9\\"},
        // Four bytes provide for one unit of UTF-16 each, and one more for all of the text.
        {"utf-32be", "utf-8", "\0\1\xF6\0"s, "\xF0\x9F\x98\x80"},
        {"utf-32be", "utf-8", "\0\1\xF6\0\0\0\0z"s, "\xF0\x9F\x98\x80z"},
        {"utf-32be", "utf-8", "\0\1\xF6\0\0\1\xF6\0"s, std::nullopt},
    };
    start_library();
    for (const conversion &row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.in) + " from " + row.from_charset + " to " + row.to_charset);
        expect_at_every_size(row);
    }
    const exact_buffer from = exact_string("\xB0\xEA\xB0"), to(4); // a text may end at its terminator
    EXPECT_EQ(ZEL_ConvertBuffer("BIG5", "gb2312", from.data(), -1, to.data(), 3), 2);
    EXPECT_EQ(to.text(), "\xB9\xFA");
    EXPECT_EQ(ZEL_ConvertBuffer("iso-8859-1", "utf-8", from.data(), -1, to.data(), 4), 3);
    EXPECT_EQ(to.text(), "\xB0\xEA\xB0");
}

TEST(Buffers, stay_untouched_where_there_is_no_converter_unless_there_is_nothing_to_convert) {
    start_library();
    for (const char *name : {"no such", "", over_long.c_str()})
        for (const auto &[from_charset, to_charset] : {std::pair{name, "utf-8"}, std::pair{"utf-8", name}}) {
            const exact_buffer to(4), empty(1);
            EXPECT_EQ(ZEL_EncodingConverterExists(from_charset, to_charset), 0);
            EXPECT_EQ(ZEL_ConvertBuffer(from_charset, to_charset, "abc", 3, to.data(), 4), 0);
            EXPECT_EQ(ZEL_ConvertBuffer(from_charset, to_charset, "", -1, to.data(), 4), 0);
            EXPECT_TRUE(to.untouched());
            EXPECT_EQ(ZEL_ConvertBuffer(from_charset, to_charset, "abc", 0, empty.data(), 1), 0);
            EXPECT_EQ(empty.text(), "");
        }
}

void expect_list(const char *from_charset, const char *to_charset,
                 std::initializer_list<const char *> expected) {
    const char *const texts[] = {nullptr, "", "abc", "\xE9"};
    char *results[4];
    ZEL_ConvertBufferArray(from_charset, to_charset, texts, 4, results);
    EXPECT_TRUE(std::equal(results, std::end(results), expected.begin(), expected.end(),
                           [](char *result, const char *text) { return taken(result) == text; }))
        << from_charset << to_charset;
}

TEST(ConvertBufferArray, keeps_the_places_of_its_texts_and_terminates_each) {
    start_library();
    expect_list("iso-8859-1", "IMAP-MODIFIED-UTF-7", {"(null)", "", "abc", "&AOk-"});
    for (const char *to_charset : {"iso-8859-1", "no such"})
        expect_list("iso-8859-1", to_charset, {"(null)", "", "abc", "\xE9"});
    const char *const text = "\xA4"; // which behind a byte order mark fills even the byte more than its size
    char *result;
    ZEL_ConvertBufferArray("iso-8859-5", "utf-16", &text, 1, &result);
    EXPECT_EQ(taken(result).substr(2), "\x04\x04");
}

TEST(Passthrough, copies_buffers_whatever_their_charsets_are) {
    start_library();
    gf_ZELStatus = ZEL_STATUS_PASSTHROUGH;
    for (const char *charset : {"iso-2022-jp", "big5", "iso-8859-1", "no such"}) {
        EXPECT_EQ(ZEL_GetResultBufferSize("a\xE9", -1, charset, "gb2312"), 3);
        EXPECT_EQ(ZEL_GetResultBufferSize("a\xE9", 0, charset, "gb2312"), 1);
        expect_at_every_size({charset, "gb2312", "a\xE9", std::nullopt});
        expect_list(charset, "gb2312", {"(null)", "", "abc", "\xE9"});
    }
}

} // namespace
