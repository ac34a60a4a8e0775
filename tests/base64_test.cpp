// Base64 in lines, read back by a decoder that knows nothing of the encoder's tables.

#include "support.h"

#include <algorithm>
#include <cstdint>

namespace {

std::string encoded(std::string_view bytes) {
    const exact_buffer from(bytes);
    const std::int32_t size = ZEL_ApplyBase64Encoding(from.data(), from.length(), nullptr, -1);
    const std::int32_t need = (from.length() + 2) / 3 * 4 + from.length() / 51 * 2 + 1;
    EXPECT_EQ(size, std::max(2 * from.length(), need));
    const exact_buffer to(static_cast<std::size_t>(need));
    EXPECT_EQ(ZEL_ApplyBase64Encoding(from.data(), from.length(), to.data(), 0), need - 1);
    EXPECT_EQ(to.text().size() + 1, to.size());
    return to.text();
}

// Six bits a character; what makes no whole byte at the end falls away with the padding.
std::string decoded(std::string_view text) {
    const std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string bytes;
    std::size_t bits = 0, held = 0;
    for (const char character : text) {
        if (alphabet.find(character) == std::string_view::npos)
            continue;
        bits = bits << 6 | alphabet.find(character);
        if ((held += 6) >= 8)
            bytes += static_cast<char>(bits >> (held -= 8));
    }
    return bytes;
}

TEST(Base64, is_read_back_by_another_decoder_at_every_length) {
    for (const unsigned step : {0u, 1u, 7u, 255u}) {
        std::string bytes;
        for (unsigned length = 0; length <= 200; ++length) {
            EXPECT_EQ(decoded(encoded(bytes)), bytes);
            bytes += static_cast<char>(length * step);
        }
    }
}

TEST(Base64, breaks_its_lines_behind_51_bytes_and_pads_what_is_left) {
    std::string line;
    while (line.size() < 68)
        line += "YWFh";
    EXPECT_EQ(encoded("aa"), "YWE=");
    EXPECT_EQ(encoded(std::string(50, 'a')), line.substr(0, 64) + "YWE=");
    EXPECT_EQ(encoded(std::string(51, 'a')), line + "\r\n");
    EXPECT_EQ(encoded(std::string(103, 'a')), line + "\r\n" + line + "\r\nYQ==");
    const exact_buffer to(1);
    EXPECT_EQ(ZEL_ApplyBase64Encoding("abc", -3, to.data(), 0), 0);
    EXPECT_EQ(to.text(), "");
    EXPECT_EQ(ZEL_ApplyBase64Encoding(nullptr, INT32_MAX, nullptr, -1), INT32_MAX);
}

} // namespace
