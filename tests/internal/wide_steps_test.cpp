// The code that takes many bytes at once, beside their plain twins on the same input.

#include "support.h"

#include "zel/codec/base64.h"
#include "zel/simd/vector16.h"

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
