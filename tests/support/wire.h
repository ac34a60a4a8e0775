// What the tests of headers, parameters and bodies share: functions that are called twice, for the size and
// for the text; where a text may stop that does not fit; and input that no one should send.

#pragma once

#include "support.h"

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>

inline std::string repeated(std::string_view text, std::size_t times) {
    std::string whole;
    while (times--)
        whole += text;
    return whole;
}

// Calls for the size, then with a block of that size and of what the function leaves to its caller.
template <class Call>
std::string in_two_calls(Call call, std::int32_t left_to_caller = 0) {
    const exact_buffer to(static_cast<std::size_t>(call(nullptr, -1) + left_to_caller));
    const std::int32_t length = call(to.data(), to.length());
    EXPECT_EQ(to.text().size(), static_cast<std::size_t>(length));
    return to.text();
}

// Whether a text may stop between the two parts.
using unit_rule = bool (*)(const std::string &written, const std::string &rest);

inline bool is_any_end(const std::string &, const std::string &) {
    return true;
}

inline bool is_character_end(const std::string &, const std::string &rest) {
    return (rest.front() & 0xC0) != 0x80;
}

template <char mark>
bool is_triple_end(const std::string &written, const std::string &) {
    const std::size_t last = written.rfind(mark);
    return last == std::string::npos || last + 3 <= written.size();
}

// Whatever the size, a beginning of the text is written, of whole units and as many as there is room for.
template <class Call>
void expect_whole_units(Call call, const std::string &whole, unit_rule may_stop, std::size_t longest_unit) {
    for_every_size(static_cast<std::int32_t>(whole.size() + 1), [&](const exact_buffer &to) {
        const std::int32_t length = call(to.data(), to.length());
        const std::string text = to.size() ? to.text() : "";
        ASSERT_EQ(text.size(), static_cast<std::size_t>(length));
        ASSERT_EQ(text, whole.substr(0, text.size()));
        if (text.size() == whole.size())
            return;
        EXPECT_TRUE(may_stop(text, whole.substr(text.size()))) << text;
        EXPECT_GE(text.size() + longest_unit, to.size());
    });
}

// Random bytes, with pieces of what the library reads strewn in.
class hostile_source {
public:
    std::string text() {
        static constexpr std::string_view pieces[] = {
            "=?",       "?=",     "?B?",   "?q?",      "=?utf-8?B?", "=?ISO-2022-JP*ja?Q?",
            "\r\n ",    "\x1B(B", "\x0E!", "\r\n\t=?", "utf-8'x'",   "\x1B$B$\"",
            "~{VP~}",   "%A4",    "=A4",   "pEA=",     "日本",       "\xA4@",
            "\x8E\xB1", " ",      "abc",   "\x83\\",   "'",          "\xE9"};
        std::string made;
        for (std::size_t count = below(24); count; --count)
            made += below(2) ? std::string(pieces[below(std::size(pieces))])
                             : std::string(1 + below(3), static_cast<char>(1 + below(255)));
        return made;
    }
    std::string language() {
        return one_of(
            {"en", "de", "ja", "ja-x", "ko", "zh", "zh-CN", "zh-TW", "zh_TW", "yi", "th", "xx", ""});
    }
    std::string charset() {
        return one_of({"UTF-8", "utf-7", "iso-8859-15", "iso-2022-jp", "euc-jp", "Shift_JIS", "euc-kr",
                       "iso-2022-kr", "gb2312", "hz-gb-2312", "big5", "us-ascii", "UTF-16", "UTF-32",
                       "UTF-16BE", "GB_2312-80", "iso-2022-jp-2"});
    }
    std::size_t below(std::size_t end) { return random_() % end; }

private:
    std::string one_of(std::initializer_list<const char *> given) {
        return below(16) ? given.begin()[below(given.size())] : text();
    }
    std::mt19937 random_{20};
};

template <class Test>
void for_hostile_input(int rounds, Test test) {
    hostile_source hostile;
    while (rounds-- && !testing::Test::HasFailure()) {
        const std::string language = hostile.language(), charset = hostile.charset(), text = hostile.text();
        SCOPED_TRACE(language + " " + charset + " " + testing::PrintToString(text));
        test(hostile, language.c_str(), charset.c_str(), text);
    }
}

// The size that is asked for takes all that a larger buffer takes, and a smaller one is kept to.
template <class Call>
void expect_enough(Call call, hostile_source &hostile, std::int32_t left_to_caller = 0) {
    const auto written = [&](std::size_t size) {
        const exact_buffer to(size);
        const std::int32_t length = call(to.data(), to.length());
        EXPECT_TRUE(size == 0 || (length < to.length() && to.data()[length] == '\0'));
        return std::string(to.data(), static_cast<std::size_t>(length));
    };
    const auto need = static_cast<std::size_t>(call(nullptr, -1) + left_to_caller);
    EXPECT_EQ(written(need), written(need * 4 + 64));
    written(hostile.below(need + 1));
}
