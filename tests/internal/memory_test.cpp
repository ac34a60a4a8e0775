// What becomes of calls while the allocations of the library fail, and those inside ICU as well. Dates and
// comparisons are not asked the latter, because ICU does not live through failures of them itself.

#include "failing_allocation.h"
#include "support.h"

#include <unicode/uclean.h>

#include <set>
#include <vector>

namespace {

struct row {
    std::string (*call)();
    std::set<std::string> failed;
    std::string whole;
};

// The results while the first, then the second, ... and all later allocations fail, up to one that is whole:
// of a call that is the first to meet its pair of charsets, and of the same call again.
void expect_stated_results(const std::vector<row> &rows) {
    for (const auto &[call, failed, whole] : rows) {
        std::set<std::string> results;
        for (int round = 0; round < 2; ++round) {
            results.erase(whole);
            for (int succeeding = 0; !results.count(whole) && succeeding < 100; ++succeeding) {
                fail_allocation_after(succeeding);
                const std::string result = call();
                no_failing_allocations();
                results.insert(result);
            }
        }
        EXPECT_EQ(results.erase(whole), 1u) << whole;
        EXPECT_EQ(results, failed);
    }
}

std::string buffer_converted() {
    const exact_buffer to(5);
    const int length = ZEL_ConvertBuffer("iso-8859-2", "iso-2022-kr", "\xE9", 1, to.data(), to.length());
    return to.untouched() ? "(untouched)" : std::string(to.data(), static_cast<std::size_t>(length));
}

std::string element_converted() {
    const char *const text = "\x88\x9F";
    char *result;
    ZEL_ConvertBufferArray("Shift_JIS", "utf-16be", &text, 1, &result);
    return taken(result);
}

std::string long_headers_compared() {
    const exact_buffer first = exact_string("a" + std::string(2000, ' ')), second = exact_string("B");
    return ZEL_CompareMessageHeaderStrings("en", "UTF-8", first.data(), second.data()) < 0 ? "<" : ">";
}

const std::vector<row> conversions = {
    {[] { return std::to_string(ZEL_EncodingConverterExists("koi8-r", "utf-8")); }, {"0"}, "1"},
    {[] { return taken(ZEL_LocalToMUTF7("\xE9", nullptr)); }, {"(null)", "\xE9"}, "&AOk-"},
    {[] { return taken(ZEL_UTF8ToEscapedUnicode("\xC3\xA9", 0)); }, {"(null)", "\xC3\xA9"}, "\\u00E9"},
    {[] { return taken(ZEL_UTF8ToEscapedUnicode("\xC3\xA9", 1)); }, {"(null)"}, "\\u00E9"},
    {[] { return taken(ZEL_UTF8ToLocal("\xA9", nullptr)); }, {"(null)"}, "?"},
    {buffer_converted, {"(untouched)", "\xE9"}, "\x1B$)C\x1A"},
    {element_converted, {"(null)", "\x88\x9F"}, "\x4E\x9C"}};

const std::vector<row> locales = {
    {[] { return taken(ZEL_GenerateDateString("de", "Mars/Base", 1, "iso-8859-1")); },
     {"(null)"},
     "Donnerstag, 1. Januar 1970 um 09:00:01 GMT+9"},
    {[] { return std::string(ZEL_CompareStrings("de", "UTF-8", "a", "B") < 0 ? "<" : ">"); }, {">"}, "<"},
    {long_headers_compared, {">"}, "<"}};

void in_tokyo(const char *, int32_t, int32_t *hours, int32_t *minutes, char *sign) {
    *hours = 9;
    *minutes = 0;
    *sign = '+';
}

TEST(Memory, that_runs_out_leaves_a_conversion_with_a_copy_a_date_with_nothing_and_an_order_by_bytes) {
    start_library();
    ZEL_SetCustomTimeZoneProc(in_tokyo);
    expect_stated_results(conversions);
    expect_stated_results(locales);
}

TEST(Memory, that_runs_out_inside_ICU_as_well_leaves_a_conversion_with_no_more_and_no_less) {
    UErrorCode status = U_ZERO_ERROR;
    u_setMemoryFunctions(
        nullptr, [](const void *, std::size_t size) { return std::malloc(size); },
        [](const void *, void *block, std::size_t size) { return std::realloc(block, size); },
        [](const void *, void *block) { std::free(block); }, &status);
    ASSERT_TRUE(U_SUCCESS(status));
    start_library();
    ASSERT_TRUE(
        ZEL_EncodingConverterExists("us-ascii", "utf-8")); // what ICU sets up once it does not try again
    expect_stated_results(conversions);
}

} // namespace
