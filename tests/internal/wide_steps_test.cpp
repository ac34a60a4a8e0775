// The code that takes many bytes at once, beside their plain twins on the same input.

#include "support.h"

#include "zel/codec/base64.h"
#include "zel/simd/padded_text.h"
#include "zel/simd/utf8.h"

#include <random>

namespace {

using namespace zel;

TEST(WideSteps, gather_a_bit_for_each_byte) {
    for (unsigned bits = 0; bits < 1U << vector_size; ++bits) {
        vector_mask mask = {};
        for (std::size_t byte = 0; byte < vector_size; ++byte)
            mask.bytes[byte] = bits >> byte & 1 ? 0xFF : 0;
        ASSERT_EQ(bits_of(mask), bits);
        ASSERT_EQ(gathered_bits(mask), bits);
    }
}

template <instructions Set>
std::string padded(const std::string &text) {
    const exact_buffer from(text);
    padded_text<2 * block_size> to;
    const auto *const start = reinterpret_cast<const unsigned char *>(from.data());
    return std::string(reinterpret_cast<const char *>(to.copy<Set>(start, from.size(), '.')), sizeof to);
}

TEST(WideSteps, pad_a_text_of_each_length) {
    for (std::string text; text.size() < 2 * block_size; text += static_cast<char>('A' + text.size() % 53)) {
        const std::string dots(2 * block_size - text.size(), '.');
        ASSERT_EQ(padded<instructions::base>(text), text + dots);
        const std::string wide = has_avx2() ? padded<instructions::avx2>(text) : text + dots;
        ASSERT_EQ(wide, text + dots);
    }
}

TEST(WideSteps, read_utf8_alike_with_all_instructions) {
    if (!has_avx2())
        GTEST_SKIP() << "not on this processor";
    std::mt19937 random;
    for (unsigned round = 0; round < 20000; ++round) {
        unsigned char bytes[block_size];
        std::generate(bytes, std::end(bytes),
                      [&] { return static_cast<unsigned char>(random() | round % 2 << 7); });
        const block64 block = load_block(bytes);
        const utf8_block plain = utf8_shape<instructions::base>(block),
                         wide = utf8_shape<instructions::avx2>(block);
        std::uint16_t units[block_size], wide_units[block_size];
        ASSERT_EQ(store_code_units<instructions::base>(units, block),
                  store_code_units<instructions::avx2>(wide_units, block));
        ASSERT_TRUE(std::equal(units, std::end(units), wide_units));
        ASSERT_EQ(std::memcmp(&plain, &wide, sizeof plain), 0);
    }
}

// What it leaves over goes by groups.
std::string encoded(base64_encoder &encode, std::string_view bytes) {
    const exact_buffer from(bytes), to(bytes.size() / 3 * 4 + bytes.size() / base64_line_bytes * 2);
    const char *const end = from.data() + from.size();
    const base64_cursors last = encode_groups(encode({from.data(), to.data()}, end), end);
    EXPECT_EQ(last.from, from.data() + from.size() / 3 * 3);
    EXPECT_EQ(last.to, to.data() + to.size());
    return std::string(to.bytes());
}

TEST(WideSteps, encode_the_base64_that_groups_give) {
    base64_encoder *const wide = wide_line_encoder();
    if (!wide)
        GTEST_SKIP() << "not on this processor";
    std::mt19937 random;
    std::string bytes;
    for (; bytes.size() < 300; bytes += static_cast<char>(random()))
        ASSERT_EQ(encoded(*wide, bytes), encoded(encode_lines_by_groups, bytes));
}

} // namespace
