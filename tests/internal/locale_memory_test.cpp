// Dates and comparisons while the library's allocations fail. ICU keeps its own, because it does not live
// through failures of them itself.

#include "failing_allocation.h"
#include "support.h"

namespace {

std::string date() {
    return taken(ZEL_GenerateDateString("de", "Mars/Base", 1, "iso-8859-1"));
}

void in_tokyo(const char *, int32_t, int32_t *hours, int32_t *minutes, char *sign) {
    *hours = 9;
    *minutes = 0;
    *sign = '+';
}

TEST(LocaleMemory, a_date_without_memory_is_null) {
    ZEL_SetCustomTimeZoneProc(in_tokyo);
    const std::string whole = date();
    for (const int successes : {0, 1, 2, 3}) { // two names of zones, the date in UTF-16 and in the charset
        fail_allocation_after(successes);
        const std::string failed = date();
        no_failing_allocations();
        EXPECT_EQ(failed, "(null)") << successes;
    }
    EXPECT_EQ(date(), whole);
}

TEST(LocaleMemory, texts_without_memory_are_compared_by_their_bytes) {
    for (const int successes : {0, 1, 2}) { // a text in UTF-16 each
        fail_allocation_after(successes);
        const int32_t order = ZEL_CompareStrings("de", "UTF-8", "a", "B");
        no_failing_allocations();
        EXPECT_EQ(order < 0, successes == 2) << successes;
    }
}

TEST(LocaleMemory, long_header_values_without_memory_are_compared_by_their_bytes) {
    start_library();
    const exact_buffer first = exact_string("a" + std::string(2000, ' ')), second = exact_string("B");
    fail_allocation_after(0);
    const int32_t order = ZEL_CompareMessageHeaderStrings("en", "UTF-8", first.data(), second.data());
    no_failing_allocations();
    EXPECT_GT(order, 0);
}

} // namespace
