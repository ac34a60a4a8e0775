// The fast path, held against ICU on open converters: the same text goes both ways, and the buffers
// are compared to the last byte.

#include "support.h"

#include "zel/conversion/converter_cache.h"

#include <unicode/ucnv.h>

#include <random>
#include <vector>

namespace {

using converter = std::unique_ptr<UConverter, decltype(&ucnv_close)>;

converter open_converter(const char *charset) {
    UErrorCode status = U_ZERO_ERROR;
    return {ucnv_open(charset, &status), &ucnv_close};
}

struct charset_pair {
    const char *from, *to;
    converter from_icu{open_converter(from)}, to_icu{open_converter(to)};

    void earn_table() const {
        const std::string high(200'000, '\xA9'); // not ASCII in any way, and so for ICU
        const exact_buffer buf(high.size() * 9);
        for (int i = 0; i < 2; ++i)
            ZEL_ConvertBuffer(from, to, high.data(), static_cast<int>(high.size()), buf.data(), buf.length());
    }

    bool has_table() const {
        const zel::fast_path &found = zel::find_pair(from, to)->path;
        return zel::table_of(found.characters) || zel::table_of(found.bytes);
    }

    // What ICU gives, or the copy where it fails or runs out of room.
    std::string by_icu(const std::string &text, std::int32_t size) const {
        std::u16string units(text.size() + 1, u'\0');
        std::string result(static_cast<std::size_t>(size), '\0');
        UErrorCode status = U_ZERO_ERROR;
        const auto from_size = static_cast<std::int32_t>(text.size());
        const std::int32_t wide =
            ucnv_toUChars(from_icu.get(), units.data(), from_size + 1, text.data(), from_size, &status);
        const std::int32_t length =
            ucnv_fromUChars(to_icu.get(), result.data(), size, units.data(), wide, &status);
        return U_SUCCESS(status) ? result.substr(0, static_cast<std::size_t>(length))
                                 : text.substr(0, static_cast<std::size_t>(std::max(size - 1, 0)));
    }

    bool agrees(const std::string &text, const char *from_buf, const exact_buffer &buf) const {
        const std::string expected = by_icu(text, buf.length());
        const std::int32_t length = ZEL_ConvertBuffer(
            from, to, from_buf, static_cast<std::int32_t>(text.size()), buf.data(), buf.length());
        const std::string end(expected.size() < buf.size() ? 1 : 0, '\0');
        return length == static_cast<std::int32_t>(expected.size()) &&
               buf.bytes().substr(0, expected.size() + 1) == expected + end;
    }

    bool agrees(const std::string &text, std::int32_t size) const {
        return agrees(text, text.data(), exact_buffer(static_cast<std::size_t>(size)));
    }

    bool agrees_in_place(const std::string &text) const {
        const exact_buffer same(text + std::string(1000, '\0'));
        return agrees(text, same.data(), same);
    }
};

// Characters that the charset holds, ASCII between them, and now and then what breaks them.
std::string random_text(std::mt19937 &random, const std::vector<std::string> &characters) {
    static constexpr std::string_view breaks[] = {"\xE0\x80\x81", "\xED\xA0\x80", "\x1B$B", "\x1B(B", "\r\n"};
    std::string text;
    for (std::size_t pieces = random() % 40; pieces > 0; --pieces) {
        const std::size_t kind = random() % 100, ascii = random() % (kind < 10 ? 200 : 25);
        if (kind < 50)
            text += std::string(ascii, static_cast<char>(' ' + random() % 95));
        else if (kind < 95)
            for (std::size_t length = random() % (kind < 60 ? 50 : 4); length > 0; --length)
                text += characters[random() % characters.size()];
        else if (kind < 97)
            text += static_cast<char>(random());
        else
            text += breaks[random() % std::size(breaks)];
    }
    return text;
}

bool has_states(const std::string &charset) {
    return charset == "iso-2022-kr" || charset == "hz-gb-2312" || charset == "utf-7" ||
           charset == "ISCII,version=0";
}

class FastPath : public testing::TestWithParam<const char *> {};

TEST_P(FastPath, gives_what_icu_gives_to_the_byte_at_every_size_and_in_place) {
    start_library();
    const charset_pair out{"UTF-8", GetParam()}, in{GetParam(), "UTF-8"};
    out.earn_table();
    in.earn_table();
    ASSERT_EQ(out.has_table(), !has_states(GetParam()));
    ASSERT_EQ(in.has_table(), !has_states(GetParam()));
    std::vector<std::string> utf8, bytes;
    for (char32_t character = 1; character < 0x10000; ++character) {
        char encoded[U8_MAX_LENGTH];
        std::size_t size = 0;
        U8_APPEND_UNSAFE(encoded, size, character);
        const std::string text(encoded, size);
        ASSERT_TRUE(out.agrees("a" + text + "b", 32)) << std::hex << std::uint32_t(character);
        const std::string coded = out.by_icu(text, 16);
        if (coded.empty() || coded.find('\x1A') != std::string::npos)
            continue;
        utf8.push_back(text);
        bytes.push_back(coded);
        ASSERT_TRUE(in.agrees(coded + "b", 32)) << std::hex << std::uint32_t(character);
    }
    std::mt19937 random(1);
    for (int round = 0; round < 1000; ++round) {
        const std::string wide = random_text(random, utf8), narrow = random_text(random, bytes);
        const auto need = static_cast<std::int32_t>(3 * std::max(wide.size(), narrow.size()) + 8);
        for (const std::int32_t size :
             {need, static_cast<std::int32_t>(random() % static_cast<unsigned>(need)), need / 3, need / 4}) {
            ASSERT_TRUE(out.agrees(wide, size)) << testing::PrintToString(wide) << " at " << size;
            ASSERT_TRUE(in.agrees(narrow, size)) << testing::PrintToString(narrow) << " at " << size;
        }
    }
    const std::string several_scripts = "a text of ASCII, русский 日本語";
    EXPECT_TRUE(out.agrees_in_place(several_scripts));
    EXPECT_TRUE(in.agrees_in_place(several_scripts));
}

TEST(FastPathOfBytes, gives_what_icu_gives_between_charsets_of_single_bytes) {
    start_library();
    const charset_pair pair{"windows-1252", "iso-8859-15"};
    pair.earn_table();
    ASSERT_TRUE(pair.has_table());
    for (int byte = 0; byte < 256; ++byte)
        for (const char *const around : {"", "a", "\xE9\x80 and more of it"}) {
            const std::string text = around + std::string(1, static_cast<char>(byte)) + around;
            for (std::int32_t size = 0; size < static_cast<std::int32_t>(text.size()) + 3; ++size)
                ASSERT_TRUE(pair.agrees(text, size)) << testing::PrintToString(text) << " at " << size;
        }
    for (const auto &[from, to] : {std::pair{"windows-1252", "euc-jp"}, std::pair{"euc-jp", "Shift_JIS"},
                                   std::pair{"windows-1252", "utf-16"}, std::pair{"hz-gb-2312", "latin1"}}) {
        const charset_pair none{from, to};
        none.earn_table();
        EXPECT_FALSE(none.has_table()) << from << to;
    }
}

TEST(FastPathTables, are_shared_by_all_names_that_icu_opens_as_one_charset) {
    start_library();
    const auto has_table = [](const char *from, const char *to) {
        EXPECT_EQ(ZEL_EncodingConverterExists(from, to), 1);
        return charset_pair{from, to}.has_table();
    };
    charset_pair{"windows-1252", "UTF-8"}.earn_table();
    charset_pair{"windows-1252", "iso-8859-15"}.earn_table();
    charset_pair{"csISO2022JP", "UTF-8"}.earn_table();
    for (const auto &[from, to] : {std::pair{"cp1252", "UTF-8"}, std::pair{"utf8", "CP-1252,x"},
                                   std::pair{"cp1252", "latin-9"}, std::pair{"utf-8", "iso-2022-jp"}})
        EXPECT_TRUE(has_table(from, to)) << from << to;
    for (const auto &[from, to] : {std::pair{"ibm-1252", "UTF-8"}, std::pair{"latin-9", "windows-1252"},
                                   std::pair{"iso-2022-jp-2", "UTF-8"}})
        EXPECT_FALSE(has_table(from, to)) << from << to;
}

INSTANTIATE_TEST_SUITE_P(Charsets, FastPath,
                         testing::Values("us-ascii", "iso-8859-1", "iso-8859-2", "iso-8859-4", "iso-8859-5",
                                         "iso-8859-6", "iso-8859-7", "iso-8859-8", "iso-8859-9",
                                         "iso-8859-15", "windows-1252", "tis-620", "iso-2022-jp", "Shift_JIS",
                                         "euc-jp", "euc-kr", "ks_c_5601-1987", "iso-2022-kr", "gb2312",
                                         "hz-gb-2312", "big5", "utf-7", "ISCII,version=0"));

} // namespace
