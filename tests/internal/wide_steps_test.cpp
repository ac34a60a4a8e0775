// The roads that take many bytes at once, beside their plain twins on the same input.

#include "support.h"

#include "zel/base/base64_lines.h"
#include "zel/base/lanes.h"

#include <random>

namespace {

using namespace zel;

TEST(WideSteps, gather_a_bit_for_each_byte) {
    for (unsigned bits = 0; bits < 1U << lane_step; ++bits) {
        signed_bytes flags = {};
        for (std::size_t byte = 0; byte < lane_step; ++byte)
            flags[byte] = bits >> byte & 1 ? -1 : 0;
        ASSERT_EQ(bits_of(flags), bits);
        ASSERT_EQ(gathered_bits(flags), bits);
    }
}

TEST(WideSteps, take_the_highest_bit_of_a_byte_for_its_flag) {
    std::mt19937 random;
    for (int round = 0; round < 1000; ++round) {
        signed_bytes bytes;
        unsigned high = 0;
        for (std::size_t byte = 0; byte < lane_step; ++byte) {
            bytes[byte] = static_cast<signed char>(random());
            high |= unsigned{bytes[byte] < 0} << byte;
        }
        ASSERT_EQ(bits_of(is_high(bytes)), high);
        ASSERT_EQ(gathered_bits(is_high(bytes)), high);
    }
}

// What a road leaves over goes by groups.
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
