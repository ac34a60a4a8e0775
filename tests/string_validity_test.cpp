// The 7-bit test and the repair of double-byte text, on exact-size heap blocks. Neither needs a started
// library.

#include "support.h"

#include <random>

namespace {

std::string repaired(const char *charset, const std::string &text) {
    const exact_buffer copy = exact_string(text);
    ZEL_CheckStringValidity(charset, copy.data());
    return copy.text();
}

TEST(StringValidity, one_high_byte_anywhere_makes_a_string_8_bit) {
    EXPECT_TRUE(ZEL_IsASCIIString(nullptr));
    for (std::size_t len = 0; len <= 70; ++len) {
        std::string text(len, '\x7F');
        EXPECT_TRUE(ZEL_IsASCIIString(exact_string(text).data()));
        for (char &byte : text) {
            byte = '\x80';
            EXPECT_FALSE(ZEL_IsASCIIString(exact_string(text).data())) << len;
            byte = 'a';
        }
    }
}

TEST(StringValidity, broken_bytes_of_double_byte_charsets_alone_become_question_marks) {
    const struct {
        const char *charset, *in, *out;
    } rows[] = {{"EUC-KR", "\x41\xB0", "A?"},
                {"ks_c_5601-1987", "\xB0\xA1\xB0", "\xB0\xA1?"},
                {"euc-jp", "\x8E\xB1\x8F\xB0\xA1z", "\x8E\xB1\x8F\xB0?z"},
                {"gb2312", "\xB0\x41\xB0\x42", "?A?B"},
                {"shift_jis", "\x80\xA0\xFD\xFE\xFF", "?\xA0???"},
                {"Shift_JIS", "\x81\x20\x81\x80\x81\xFF\xFF", "\x81\x20\x81\x80\x81\xFF?"},
                {"Shift_JIS", "A\x81", "A\x81"},
                {"BIG5", "\x80\xA0\xFA\xFF", "????"}};
    for (const auto &row : rows)
        EXPECT_EQ(repaired(row.charset, row.in), row.out) << row.charset;
    for (const char *charset : {"iso-8859-1", "utf-8", "iso-2022-jp", "hz-gb-2312", "no such", ""})
        EXPECT_EQ(repaired(charset, "\x80\xB0\x41\xFF"), "\x80\xB0\x41\xFF");
}

// The rules byte by byte: a lead takes the next byte with it, and of EUC only a high one.
std::string repaired_by_walk(bool euc, std::string text) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        const auto byte = static_cast<unsigned char>(text[at]);
        const bool lead = euc ? byte >= 0x80 : byte >= 0xA1 && byte <= 0xF9;
        const bool has_trail = !euc || (at + 1 < text.size() && text[at + 1] & 0x80);
        if (byte >= 0x80 && !(lead && has_trail))
            text[at] = '?';
        at += lead;
    }
    return text;
}

TEST(StringValidity, runs_of_any_length_are_paired_wherever_they_stand) {
    std::mt19937 random;
    for (int texts = 0; texts < 20000; ++texts) {
        std::string text;
        while (random() % 12)
            text.append(random() % 40, "a\xA1\xB0\xFF\x80"[random() % 5]);
        ASSERT_EQ(repaired("gb2312", text), repaired_by_walk(true, text));
        ASSERT_EQ(repaired("big5", text), repaired_by_walk(false, text));
    }
}

} // namespace
