// The eight direct converters on exact-size heap blocks: what each byte becomes, every size of the output,
// every input of two bytes in every mode, runs of all lengths by blocks and by scalars, and whole character
// sets beside the system's iconv. None needs a started library.

#include "neighbour.h"
#include "support.h"

#include <algorithm>
#include <vector>

namespace {

using namespace std::string_literals;
using converter = std::int32_t (*)(const char *, std::int32_t, char *, std::int32_t);
constexpr std::int32_t ample = 1000;

std::string converted(converter convert, std::string_view in, std::int32_t to_size = ample) {
    const exact_buffer from(in), to(static_cast<std::size_t>(std::max(to_size, 1)));
    const std::int32_t length = convert(from.data(), from.length(), to.data(), to_size);
    if (length < 0 || length >= to.length() || to.bytes()[static_cast<std::size_t>(length)] != '\0')
        ADD_FAILURE() << "not terminated: " << length << " of " << to_size;
    return std::string(to.bytes().substr(0, static_cast<std::size_t>(length)));
}

// By the scalar step alone, as a text goes that lies in the buffer: behind all that may be written.
std::string converted_by_scalars(converter convert, std::string_view in) {
    const std::size_t room = 5 * in.size() + 4;
    const exact_buffer both(room + in.size());
    in.copy(both.data() + room, in.size());
    const std::int32_t length =
        convert(both.data() + room, static_cast<std::int32_t>(in.size()), both.data(), both.length());
    return std::string(both.bytes().substr(0, static_cast<std::size_t>(length)));
}

TEST(DirectConverters, follow_the_rules_of_each_charset) {
    const struct {
        converter convert;
        std::string in, out;
    } rows[] = {
        // an escape sequence at each change
        {eucjp2jis, "\xB0\xA1\x61", "\x1B$B0!\x1B(Ba"},
        {eucjp2jis, "\x8E", "\x1B$B\x1B(B"},
        {eucjp2jis, "\x8E\xE0", "\x1B$B\x1B(B"},
        {eucjp2jis, "\xB0", "\x1B$B0\x1B(B"},
        {eucjp2jis, "\xB0\x0A", "\x1B$B0\x0A\x1B(B"},
        {eucjp2jis, "\x8F\xB0\xA1", "\x1B$B\x0F\x30!\x1B(B"},
        {sjis2jis, "\xB6\xDE", "\x1B$B%+!+\x1B(B"},
        {sjis2jis, "\xA0\xFD", "\xA0\xFD"},
        {sjis2jis, "\xB1\xA0\x80", "\x1B$B%\"\x1B(B\xA0\x80"},
        // all modes
        {jis2eucjp, "\x1B$@0!\x1B(J!", "\xB0\xA1!"},
        {jis2eucjp, "\x1B(I1", "\x8E\xB1"},
        {jis2sjis, "\x1B(I1", "\xB1"},
        {jis2eucjp, "\x0E\x31\x0F\x41", "\x8E\xB1\x41"},
        {jis2eucjp, "\x1B$B\x0E\x31\x0F\x30!", "\x8E\xB1\xB0\xA1"},
        {jis2eucjp, "\x1B$B\x0E\x31\n\x0F\x30!", "\x8E\xB1\n0!"},
        {jis2eucjp, "\x1B$B\x0E\x0F\n\x0F\x30!", "\n\xB0\xA1"},
        {jis2eucjp, "\x0F\x41", "A"},
        {jis2eucjp, "\x1B$B0!\nA", "\xB0\xA1\nA"},
        {jis2eucjp, "\x1B$B0\n !", "\xB0\x8A\xA0\xA1"},
        {jis2eucjp, "\x1B$B\x1B[0!", "\x1B[0!"},
        {jis2eucjp, "\x1B$B\x7F\x30!", "\x7F\x30!"},
        {jis2sjis, "\x1B$B\xB0\xA1", "\x88\x9F"},
        // Korean and HZ in runs
        {iso2022kr2euckr, "\x1B$)C\x0E\x30!\x0F\x41", "\xB0\xA1\x41"},
        {iso2022kr2euckr, "\x0E\x30\x0F", "\x0E\x30\x0F"},
        {iso2022kr2euckr, "\x1B$)", "\x1B$)"},
        {iso2022kr2euckr, "\x1B$)C\x0E 0!", " \xB0\xA1"},
        {iso2022kr2euckr, "\x1B$)C\x0E\n0!", "\x8A\xB0\xA1\x80"},
        {iso2022kr2euckr, "\x1B$)C\x0E\x30!\x1B$)C0!", "\xB0\xA1\x30!"},
        {hz2gb, "~{0!~}A", "\xB0\xA1\x41"},
        {hz2gb, "~~~\n~A~", "~~A~"},
        {hz2gb, "~{", ""},
        {hz2gb, "~{\n0~~~\n!", "\x8A\xB0\xFE\xFE\xFE\x8A\xA1\x80"},
        // one character for one
        {big2gb, "\xB0\xEA\x41\x90", "\xB9\xFA\x41\x90"},
        {big2gb, "\xC7\x40\xFA\x40\xF9\xFE\xA1\x20", "????????"},
        {big2gb, "\xA4\x7F\xA4\xA0\xA4\xFF\xB0", "????????"},
        {gb2big5, "\xB9\xFA\x41\x90", "\xB0\xEA\x41\x90"},
        {gb2big5, "\xF8\xA1\xA4\xA1\xA1\x20\xA1\xA0", "????????"},
        {gb2big5, "\xA3\x80", converted(gb2big5, "\xA2\xDE")},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(converted(row.convert, row.in), row.out) << testing::PrintToString(row.in);
        EXPECT_EQ(converted_by_scalars(row.convert, row.in), row.out) << testing::PrintToString(row.in);
    }
}

TEST(DirectConverters, raw_bytes_of_7_bit_text_pass_only_where_the_host_asks_for_it) {
    for (const converter convert : {jis2eucjp, jis2sjis, iso2022kr2euckr, hz2gb}) {
        g_zelconf.pass_8bit = 0;
        EXPECT_EQ(converted(convert, "a\xE9\x80"), "a??");
        g_zelconf.pass_8bit = 1;
        EXPECT_EQ(converted(convert, "a\xE9\x80"), "a\xE9\x80");
    }
}

TEST(DirectConverters, a_full_buffer_ends_the_text_behind_a_unit) {
    const struct {
        converter convert;
        std::string in;
        std::vector<std::size_t> ends; // of the units, as they stand in the whole result
    } rows[] = {
        {eucjp2jis, "\xB0\xA1\x8E\xB1\x61", {3, 4, 5, 6, 7, 10, 11}},
        {sjis2jis, "\x88\x9F\xB1\x61\xB1", {3, 5, 7, 10, 11, 14, 16, 19}},
        {jis2eucjp, "a\x1B$B0!\x1B(I1", {1, 3, 5}},
        {jis2sjis, "a\x1B$B0!\x1B(I1", {1, 3, 4}},
        {iso2022kr2euckr, "\x1B$)C\x0E\x30! \x0F\x41", {2, 3, 4}},
        {hz2gb, "~~~{0!~}A", {1, 3, 4}},
        {big2gb, "a\xB0\xEA\xC7\x40", {1, 3, 5}},
        {gb2big5, "a\xB9\xFA\xF8\xA1", {1, 3, 5}},
    };
    for (const auto &row : rows) {
        const std::string whole = converted(row.convert, row.in);
        ASSERT_EQ(whole.size(), row.ends.back());
        for (std::int32_t size = -1; size <= static_cast<std::int32_t>(whole.size()) + 1; ++size) {
            std::size_t last = 0;
            for (const std::size_t end : row.ends)
                last = static_cast<std::int32_t>(end) < size ? end : last;
            EXPECT_EQ(converted(row.convert, row.in, size), whole.substr(0, last)) << size;
        }
    }
}

// A text of one charset: what stands around pairs, one of them, and what no run goes on with.
struct script {
    converter convert;
    std::string opening, pair, closing, odd;
};

const std::vector<script> scripts = {
    {eucjp2jis, "", "\xB0\xA1", "", "\x8E\xB1"},
    {sjis2jis, "", "\x88\x9F", "", "\xB1"},
    {jis2eucjp, "\x1B$B", "0!", "\x1B(J", "\x0E\x31\x0F"},
    {jis2sjis, "\x1B$@", "0!", "\x1B(B", "\x1B(I1\x1B(B"},
    {iso2022kr2euckr, "\x1B$)C\x0E", "0!", "\x0F", "\x0E 1!\x0F"},
    {hz2gb, "~{", "0!", "~}", "~~"},
    {big2gb, "", "\xB0\xE5", "", "\xA1 \x80"},
    {gb2big5, "", "\xB9\xF5", "", "\xA1 \x80"},
};

// Neighbours differ, so that none can stand for the other.
std::string runs_of(const script &of, std::size_t singles, std::size_t pairs) {
    std::string text;
    for (std::size_t i = 0; i < singles; ++i)
        text += static_cast<char>('a' + i % 26);
    text += of.opening;
    for (std::size_t i = 0; i < pairs; ++i)
        text += {of.pair[0], static_cast<char>(of.pair[1] + static_cast<int>(i % 7))};
    return text + of.closing;
}

TEST(DirectConverters, runs_of_any_length_become_the_same_by_blocks_and_by_scalars) {
    for (const script &of : scripts)
        for (std::size_t singles = 0; singles < 70; ++singles)
            for (std::size_t pairs = 0; pairs < 26; ++pairs)
                for (const std::string &end : {""s, of.odd + "z"}) {
                    const std::string text = runs_of(of, singles, pairs) + end;
                    ASSERT_EQ(converted(of.convert, text), converted_by_scalars(of.convert, text))
                        << testing::PrintToString(text);
                }
}

TEST(DirectConverters, a_long_text_becomes_the_same_by_blocks_and_by_scalars_wherever_it_ends) {
    for (const script &of : scripts) {
        std::string text;
        for (std::size_t part = 0; text.size() < 5000; ++part) {
            const std::string runs =
                runs_of(of, part % 23 + 1, part % 37) + (part % 5 ? " " : of.odd + "\r\n");
            for (std::size_t cut = part % 50 ? runs.size() : 0; cut <= runs.size(); ++cut) {
                const std::string in = text + runs.substr(0, cut);
                ASSERT_EQ(converted(of.convert, in, 10000), converted_by_scalars(of.convert, in))
                    << testing::PrintToString(in);
            }
            text += runs;
        }
    }
}

TEST(DirectConverters, a_text_that_does_not_grow_is_converted_in_place) {
    for (const script &of : scripts) {
        std::string text;
        for (std::size_t part = 0; part < 100; ++part)
            text += runs_of(of, part, part % 30);
        const std::string whole = converted(of.convert, text, 10000);
        if (whole.size() > text.size())
            continue;
        const exact_buffer same(text + '\0');
        EXPECT_EQ(of.convert(same.data(), same.length() - 1, same.data(), same.length()),
                  static_cast<std::int32_t>(whole.size()));
        EXPECT_EQ(same.text(), whole);
    }
}

// The same from a block that ends with the text and from one in which a NUL and more text follow.
void expect_end_is_kept(converter convert, const std::string &in) {
    const exact_buffer from(in + std::string("\0\xA1!", 3)), to(ample);
    const std::int32_t length = convert(from.data(), from.length(), to.data(), to.length());
    const std::string alone = converted(convert, in);
    if (alone != converted_by_scalars(convert, in))
        ADD_FAILURE() << testing::PrintToString(in) << " differs by scalars";
    if (to.bytes().substr(0, static_cast<std::size_t>(length)) != alone)
        ADD_FAILURE() << testing::PrintToString(in) << " reads behind its end";
    if (alone.size() > 5 * in.size() + 3)
        ADD_FAILURE() << testing::PrintToString(in) << " grows to " << alone.size();
}

TEST(DirectConverters, nothing_behind_the_end_of_a_text_is_read) {
    for (const script &of : scripts)
        for (std::size_t opened = 0; opened <= of.opening.size() + 1; ++opened)
            for (int pair = 0; pair < 0x10000; ++pair) {
                const char bytes[] = {static_cast<char>(pair >> 8), static_cast<char>(pair)};
                expect_end_is_kept(of.convert, (of.opening + of.odd).substr(0, opened) +
                                                   std::string(bytes, strnlen(bytes, 2)));
            }
}

std::string pair_of(int first, int second) {
    return {static_cast<char>(first), static_cast<char>(second)};
}

// Calls a test for each place of a plane of 94 by 94, with the two 7-bit bytes.
template <class Test>
void for_each_place(Test test) {
    for (int first = 0x21; first <= 0x7E; ++first)
        for (int second = 0x21; second <= 0x7E; ++second)
            test(first, second);
}

TEST(DirectConverters, agree_with_iconv_on_all_of_jis_x_0208) {
    const neighbour to_eucjp("ISO-2022-JP", "EUC-JP"), to_sjis("ISO-2022-JP", "SHIFT_JIS");
    int characters = 0;
    for_each_place([&](int first, int second) {
        const std::string jis = "\x1B$B" + pair_of(first, second) + "\x1B(B";
        const std::string eucjp = to_eucjp(jis), sjis = to_sjis(jis);
        if (eucjp.empty())
            return;
        ++characters;
        EXPECT_EQ(converted(jis2eucjp, jis), eucjp);
        EXPECT_EQ(converted(jis2sjis, jis), sjis);
        EXPECT_EQ(converted(eucjp2jis, eucjp), jis);
        EXPECT_EQ(converted(sjis2jis, sjis), jis);
    });
    EXPECT_EQ(characters, 6879);
}

TEST(DirectConverters, agree_with_iconv_on_all_of_ks_x_1001_and_gb_2312) {
    const neighbour to_euckr("ISO-2022-KR", "EUC-KR"), from_gb("GB2312", "UTF-8");
    int korean = 0, chinese = 0;
    for_each_place([&](int first, int second) {
        const std::string pair = pair_of(first, second), high = pair_of(first | 0x80, second | 0x80);
        const std::string iso2022kr = "\x1B$)C\x0E" + pair + "\x0F";
        if (to_euckr(iso2022kr) == high) {
            ++korean;
            EXPECT_EQ(converted(iso2022kr2euckr, iso2022kr), high);
        }
        if (!from_gb(high).empty()) {
            ++chinese;
            EXPECT_EQ(converted(hz2gb, "~{" + pair + "~}"), high);
        }
    });
    EXPECT_GE(korean, 8224);
    EXPECT_EQ(chinese, 7445);
}

TEST(DirectConverters, widen_each_half_width_katakana) {
    const std::string jis =
        neighbour("UTF-8", "ISO-2022-JP")("。「」、・ヲァィゥェォャュョッーアイウエオカキクケコサシスセソタチ"
                                          "ツテトナニヌネノハヒフヘホマミムメモヤユヨ"
                                          "ラリルレロワン゛゜");
    std::string sjis, eucjp;
    for (int byte = 0; byte <= 0xFF; ++byte)
        if (is_hankakukana(static_cast<unsigned char>(byte))) {
            sjis += static_cast<char>(byte);
            eucjp += pair_of(0x8E, byte);
        }
    EXPECT_EQ(sjis.size(), std::size(KanaTbl));
    EXPECT_EQ(converted(sjis2jis, sjis), jis);
    EXPECT_EQ(converted(eucjp2jis, eucjp), jis);
}

} // namespace
