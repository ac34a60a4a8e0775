// Base64 in lines, held against six bits a character and no tables.

#include "support.h"

namespace {

std::string encoded(std::string_view bytes) {
    const exact_buffer from(bytes);
    const std::int32_t size = ZEL_ApplyBase64Encoding(from.data(), from.length(), nullptr, -1);
    const std::int32_t need = (from.length() + 2) / 3 * 4 + from.length() / 51 * 2 + 1;
    EXPECT_EQ(size, std::max(2 * from.length(), need));
    const exact_buffer to(static_cast<std::size_t>(need));
    EXPECT_EQ(ZEL_ApplyBase64Encoding(from.data(), from.length(), to.data(), 0), need - 1);
    return to.text();
}

std::string by_bits(const std::string &bytes) {
    const std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    const auto byte = [&](std::size_t at) {
        return at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : 0U;
    };
    std::string text;
    for (std::size_t bit = 0; bit < 8 * bytes.size(); bit += 6) {
        text += alphabet[(byte(bit / 8) << 8 | byte(bit / 8 + 1)) >> (10 - bit % 8) & 63];
        text += bit % 408 == 402 ? "\r\n" : ""; // 51 bytes
    }
    return text + std::string((3 - bytes.size() % 3) % 3, '=');
}

TEST(Base64, writes_six_bits_a_character_and_51_bytes_a_line_at_every_length) {
    for (const unsigned step : {0u, 1u, 7u, 255u}) {
        std::string bytes;
        for (unsigned length = 0; length <= 200; ++length) {
            EXPECT_EQ(encoded(bytes), by_bits(bytes));
            bytes += static_cast<char>(length * step);
        }
    }
    EXPECT_EQ(encoded("aa"), "YWE=");
    EXPECT_EQ(encoded(std::string(52, 'a')), repeated("YWFh", 17) + "\r\nYQ==");
    const exact_buffer to(1);
    EXPECT_EQ(ZEL_ApplyBase64Encoding("abc", -3, to.data(), 0), 0);
    EXPECT_EQ(to.text(), "");
    EXPECT_EQ(ZEL_ApplyBase64Encoding(nullptr, INT32_MAX, nullptr, -1), INT32_MAX);
}

} // namespace
