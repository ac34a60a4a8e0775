// What becomes of calls while the allocations of the library fail, and those inside ICU as well. Dates and
// comparisons are not asked the latter, because ICU does not live through failures of them itself. The linker
// sends the malloc, strdup and xmalloc of this executable here; ICU, NSPR and the C++ library keep theirs.

#include "scratch.h"
#include "support.h"

#include "zel/base/frame.h"
#include "zel/policy/bundle_message.h"

#include <unicode/uclean.h>

#include <climits>
#include <set>
#include <vector>

namespace {

int countdown = INT_MAX; // allocations that succeed

bool fails() {
    return countdown != INT_MAX && --countdown < 0;
}

} // namespace

extern "C" {

void *__real_malloc(std::size_t size);
void *__real_xmalloc(std::uint32_t size);
char *__real_strdup(const char *text);

void *__wrap_malloc(std::size_t size) {
    return fails() ? nullptr : __real_malloc(size);
}
void *__wrap_xmalloc(std::uint32_t size) {
    return fails() ? nullptr : __real_xmalloc(size);
}
char *__wrap_strdup(const char *text) {
    return fails() ? nullptr : __real_strdup(text);
}
}

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
                countdown = succeeding;
                const std::string result = call();
                countdown = INT_MAX;
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

std::string sign_of(int32_t order) {
    return order < 0 ? "<" : order > 0 ? ">" : "=";
}

std::string long_headers_compared() {
    const exact_buffer first = exact_string("a" + std::string(2000, ' ')), second = exact_string("B");
    return sign_of(ZEL_CompareMessageHeaderStrings("en", "UTF-8", first.data(), second.data()));
}

const custom_bundle &bundle() {
    static const custom_bundle files("{mail|ja,C} = koi8-r\n");
    return files;
}

std::string message_read() {
    static const zel::owned_bundle opened = zel::open_encbylang(bundle().root().c_str());
    return taken(resourceBundleGetUTF8Message(opened.get(), "C"));
}

std::string local_charset() {
    unsetenv("LANG");
    _setupLocalCharEncoding(bundle().root().c_str());
    return zel::encLocal;
}

const std::vector<row> conversions = {
    {[] { return std::to_string(ZEL_EncodingConverterExists("koi8-r", "utf-8")); }, {"0"}, "1"},
    {[] { return taken(ZEL_LocalToMUTF7("\xE9", nullptr)); }, {"(null)", "\xE9"}, "&AOk-"},
    {[] { return taken(ZEL_UTF8ToEscapedUnicode("\xC3\xA9", 0)); }, {"(null)", "\xC3\xA9"}, "\\u00E9"},
    {[] { return taken(ZEL_UTF8ToEscapedUnicode("\xC3\xA9", 1)); }, {"(null)"}, "\\u00E9"},
    {[] { return taken(ZEL_UTF8ToLocal("\xA9", nullptr)); }, {"(null)"}, "?"},
    {buffer_converted, {"(untouched)", "\xE9"}, "\x1B$)C\x1A"},
    {element_converted, {"(null)", "\x88\x9F"}, "\x4E\x9C"}};

const std::vector<row> locales_and_bundles = {
    {[] { return taken(ZEL_GenerateDateString("de", "Mars/Base", 1, "iso-8859-1")); },
     {"(null)"},
     "Donnerstag, 1. Januar 1970 um 09:00:01 GMT+9"},
    {[] { return sign_of(ZEL_CompareStrings("de", "UTF-8", "a", "B")); }, {">"}, "<"},
    {long_headers_compared, {">"}, "<"},
    {[] { return std::string(ZEL_InternetMessageCharset("ja", nullptr)); }, {"iso-2022-jp"}, "koi8-r"},
    {message_read, {"(null)"}, "koi8-r"},
    {local_charset, {"iso-8859-1"}, "koi8-r"}};

void in_tokyo(const char *, int32_t, int32_t *hours, int32_t *minutes, char *sign) {
    *hours = 9;
    *minutes = 0;
    *sign = '+';
}

TEST(Memory, that_runs_out_leaves_copies_or_nothing_the_order_of_bytes_and_built_in_charsets) {
    start_library();
    ZEL_SetCustomTimeZoneProc(in_tokyo);
    expect_stated_results(conversions);
    ASSERT_EQ(message_read(), local_charset()); // now that the bundle is compiled, and found
    expect_stated_results(locales_and_bundles);
}

TEST(Memory, that_runs_out_inside_ICU_as_well_leaves_a_conversion_with_no_more_and_no_less) {
    UErrorCode status = U_ZERO_ERROR;
    u_setMemoryFunctions(
        nullptr, [](const void *, std::size_t size) { return std::malloc(size); },
        [](const void *, void *block, std::size_t size) { return std::realloc(block, size); },
        [](const void *, void *block) { std::free(block); }, &status);
    ASSERT_TRUE(U_SUCCESS(status));
    start_library();
    // What ICU sets up once it does not try again.
    ASSERT_TRUE(ZEL_EncodingConverterExists("us-ascii", "utf-8"));
    expect_stated_results(conversions);
}

} // namespace
