// The host's support library, which libzel is loaded with.

#include "qorm.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>

namespace {

TEST(Qorm, memory_is_writable_and_released_with_free_even_when_it_is_nothing) {
    for (const std::uint32_t size : {0U, 4096U}) {
        void *memory = xmalloc(size);
        ASSERT_NE(memory, nullptr);
        std::free(std::memset(memory, 0xFF, size));
    }
}

TEST(Qorm, every_error_code_has_a_plain_text_that_outlives_the_calls_of_other_threads) {
    EXPECT_STREQ(service_errstr(ENOENT), "No such file or directory");
    for (const std::int32_t code : {INT32_MIN, -1, 0, 1, 133, 134, 100000, INT32_MAX}) {
        const std::string text = service_errstr(code);
        EXPECT_FALSE(text.empty()) << code;
        for (const char byte : text)
            EXPECT_TRUE(byte >= ' ' && byte <= '~') << code << ": " << text;
    }
    const char *mine = service_errstr(100001);
    std::thread([] { EXPECT_STREQ(service_errstr(100002), "Unknown error 100002"); }).join();
    EXPECT_STREQ(mine, "Unknown error 100001");
}

} // namespace
