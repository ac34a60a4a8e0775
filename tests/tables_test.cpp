// The tables between Big5 and GB 2312 through the converters that read them: telling characters, the ways
// there and back, and the characters that both sets have, which iconv names.

#include "neighbour.h"
#include "support.h"

#include <functional>
#include <set>

namespace {

std::string mapped(std::int32_t (&convert)(const char *, std::int32_t, char *, std::int32_t),
                   std::string_view in) {
    char to[16];
    const std::int32_t length = convert(in.data(), static_cast<std::int32_t>(in.size()), to, sizeof to);
    return std::string(to, static_cast<std::size_t>(length));
}

// Calls a test for each pair of Big5 from a row on.
void for_each_pair(int first_lead, const std::function<void(std::string)> &test) {
    for (int lead = first_lead; lead <= 0xF9; ++lead)
        for (int trail = 0x40; trail <= 0xFE; ++trail)
            if (trail <= 0x7E || trail >= 0xA1)
                test({static_cast<char>(lead), static_cast<char>(trail)});
}

TEST(Tables, tell_traditional_from_simplified_characters) {
    const struct {
        const char *big5, *gb, *back;
    } rows[] = {
        {"\xA1\x40", "\xA1\xA1", "\xA1\x40"}, {"\xA1\x41", "\xA3\xAC", "\xA1\x41"},
        {"\xA1\x44", "\xA3\xAE", "\xA1\x44"}, {"\xA1\x45", "\xA3\xAE", "\xA1\x44"},
        {"\xA1\x4A", "\xA1\xC3", "\xA1\x4A"}, {"\xCA\x5E", "\xCC\xE5", "\xC5\xE9"},
        {"\xB0\xEA", "\xB9\xFA", "\xB0\xEA"}, {"\xC5\xE9", "\xCC\xE5", "\xC5\xE9"},
        {"\xB7\x52", "\xB0\xAE", "\xB7\x52"}, {"\xB5\x6F", "\xB7\xA2", "\xB5\x6F"},
        {"\xBE\x76", "\xB7\xA2", "\xB5\x6F"}, {"\xA6\x5A", "\xBA\xF3", "\xA6\x5A"},
        {"\xB8\xCC", "\xC0\xEF", "\xA8\xBD"},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(mapped(big2gb, row.big5), row.gb);
        EXPECT_EQ(mapped(gb2big5, row.gb), row.back);
    }
}

TEST(Tables, what_big5_reaches_comes_back_to_one_that_goes_there) {
    std::set<std::string> reached;
    for_each_pair(0xA1, [&](const std::string &big5) {
        if (const std::string gb = mapped(big2gb, big5); gb != "??")
            reached.insert(gb);
    });
    EXPECT_GE(reached.size(), 6700U);
    for (const std::string &gb : reached)
        EXPECT_EQ(mapped(big2gb, mapped(gb2big5, gb)), gb);
}

TEST(Tables, ideographs_that_both_sets_have_go_to_themselves) {
    const neighbour to_unicode("BIG5", "UTF-8"), to_gb("UTF-8", "GB2312");
    int shared = 0;
    for_each_pair(0xA4, [&](const std::string &big5) {
        const std::string gb = to_gb(to_unicode(big5));
        if (gb.empty())
            return;
        ++shared;
        EXPECT_EQ(mapped(big2gb, big5), gb);
    });
    EXPECT_GT(shared, 4000);
}

} // namespace
