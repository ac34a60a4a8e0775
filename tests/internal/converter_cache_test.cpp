// The cache of converter pairs: which record it lends, how its lists grow, and what becomes of a conversion
// when memory runs out in the library or inside ICU.

#include "failing_allocation.h"
#include "rendezvous.h"
#include "support.h"

#include "zel/conversion/converter_cache.h"

#include <unicode/uclean.h>

#include <map>
#include <set>
#include <thread>
#include <vector>

namespace {

using namespace zel;

// The head of the pair list, as long as a test borrows this pair before any other.
EncodingConverter *list_head() {
    return std::to_address(borrow_converter("us-ascii", "utf-8"));
}

int records_behind(const EncodingConverter *record,
                   std::atomic<EncodingConverter *> EncodingConverter::*next) {
    int records = 0;
    while ((record = record->*next))
        ++records;
    return records;
}

TEST(ConverterCache, tells_pairs_by_their_names_but_not_by_the_case_of_these) {
    start_library();
    const EncodingConverter *head = list_head();
    EXPECT_EQ(borrow_converter("US-ASCII", "Utf-8").get(), head);
    const char *const others[][2] = {
        {"ascii", "utf-8"}, {"us-ascii", "utf8"}, {"utf-8", "us-ascii"}, {"utf-8", "utf-8"}};
    std::set<EncodingConverter *> pairs;
    for (const auto &[from_charset, to_charset] : others) {
        EXPECT_EQ(ZEL_EncodingConverterExists(from_charset, to_charset), 1);
        pairs.insert(borrow_converter(from_charset, to_charset).get());
    }
    EXPECT_EQ(pairs.size(), 4u);
    EXPECT_EQ(records_behind(head, &EncodingConverter::next_pair), 4);
    EXPECT_EQ(records_behind(head, &EncodingConverter::next_instance), 0);
}

TEST(ConverterCache, lends_the_oldest_free_record_and_opens_one_only_when_all_are_lent) {
    start_library();
    EncodingConverter *first = load_encodingconverter("big5", "utf-8");
    EncodingConverter *second = load_encodingconverter("big5", "utf-8");
    EncodingConverter *third = load_encodingconverter("BIG5", "utf-8");
    EXPECT_EQ(first->next_instance, second);
    EXPECT_EQ(second->next_instance, third);
    unload_encodingconverter(third);
    unload_encodingconverter(second);
    EXPECT_EQ(borrow_converter("big5", "utf-8").get(), second);
    unload_encodingconverter(first);
    unload_encodingconverter(nullptr);
    EXPECT_EQ(borrow_converter("big5", "utf-8").get(), first);
    EXPECT_EQ(records_behind(first, &EncodingConverter::next_instance), 2);
}

TEST(ConverterCache, keeps_twenty_thousand_pairs_in_order_and_finds_the_first_of_each) {
    start_library();
    const EncodingConverter *pair = list_head();
    const auto name = [](int i) { return "iso-8859-15,x" + std::to_string(i); };
    for (int i = 0; i < 20'000; ++i)
        ASSERT_EQ(ZEL_EncodingConverterExists(name(i).c_str(), "utf-16be"), 1);
    for (int i = 0; i < 20'000; ++i) {
        pair = pair->next_pair;
        ASSERT_EQ(pair->from_name.get(), name(i));
        ASSERT_EQ(find_pair(name(i).replace(0, 3, "ISO").c_str(), "UTF-16BE"), pair);
    }
    EXPECT_EQ(pair->next_pair, nullptr);
    EXPECT_EQ(find_pair("utf-16be", name(0).c_str()), nullptr);
}

TEST(ConverterCache, leaves_a_lent_record_to_its_borrower_when_the_library_stops) {
    start_library("/nowhere", {.no_atexit = 1});
    static const EncodingConverter *const lent = load_encodingconverter("koi8-r", "utf-8");
    borrow_converter("koi8-r", "utf-8");
    borrow_converter("utf-8", "koi8-r");
    ZEL_Terminate();
    EXPECT_EQ(lent->in_use, 1);
    EXPECT_STREQ(lent->from_name.get(), "koi8-r");
    EXPECT_EQ(ucnv_getMaxCharSize(lent->to_cnv.get()), 3);
}

constexpr std::size_t workers = 8;
constexpr const char *shared_charsets[] = {"koi8-r", "Shift_JIS", "euc-kr", "big5"};

// At each step all threads borrow the same pair at once, and before it two each another.
void borrow_in_step(std::size_t worker, rendezvous &all) {
    for (std::size_t step = 0; step < 60; ++step) {
        const char *other = shared_charsets[(worker + step) % std::size(shared_charsets)];
        all.arrive_and_wait();
        EXPECT_TRUE(borrow_converter("utf-8", other));
        const lent_converter lent =
            borrow_converter(shared_charsets[step % std::size(shared_charsets)], "utf-8");
        EXPECT_EQ(lent->in_use, 1);
        all.arrive_and_wait();
    }
}

TEST(ConverterCache, has_eight_records_of_a_pair_for_eight_threads_and_goes_back_to_the_first) {
    start_library();
    const EncodingConverter *head = list_head();
    rendezvous all(workers);
    std::vector<std::thread> threads;
    for (std::size_t worker = 0; worker < workers; ++worker)
        threads.emplace_back(borrow_in_step, worker, std::ref(all));
    for (std::thread &thread : threads)
        thread.join();
    std::map<std::pair<std::string, std::string>, std::vector<const EncodingConverter *>> entries;
    for (const EncodingConverter *pair = head->next_pair; pair; pair = pair->next_pair)
        entries[{pair->from_name.get(), pair->to_name.get()}].push_back(pair);
    EXPECT_EQ(entries.size(), 2 * std::size(shared_charsets));
    for (const auto &[names, pairs] : entries) {
        EXPECT_LE(pairs.size(), workers);
        const int further = records_behind(pairs[0], &EncodingConverter::next_instance);
        EXPECT_TRUE(names.second == "utf-8" ? further == 7 : further < 8) << further;
        EXPECT_EQ(borrow_converter(names.first.c_str(), names.second.c_str()).get(), pairs[0]);
    }
}

// The results while the first, then the second, ... and all later allocations fail, up to one that is whole:
// of a call that is the first to meet its pair, and of the same call again.
std::set<std::string> results_without_memory(std::string (*call)(), const std::string &whole) {
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
    return results;
}

std::string buffer_converted() {
    const exact_buffer to(5);
    const int length = ZEL_ConvertBuffer("iso-8859-2", "iso-2022-kr", "\xE9", 1, to.data(), to.length());
    return to.untouched() ? "(untouched)" : std::string(to.data(), static_cast<std::size_t>(length));
}

std::string element_converted() {
    const char *const texts[] = {"\x88\x9F"};
    char *results[1];
    ZEL_ConvertBufferArray("Shift_JIS", "utf-16be", texts, 1, results);
    return taken(results[0]);
}

void expect_stated_results_without_memory() {
    const struct {
        std::string (*call)();
        std::set<std::string> failed;
        std::string whole;
    } rows[] = {
        {[] { return std::to_string(ZEL_EncodingConverterExists("koi8-r", "utf-8")); }, {"0"}, "1"},
        {[] { return taken(ZEL_LocalToMUTF7("\xE9", nullptr)); }, {"(null)", "\xE9"}, "&AOk-"},
        {[] { return taken(ZEL_UTF8ToEscapedUnicode("\xC3\xA9", 0)); }, {"(null)", "\xC3\xA9"}, "\\u00E9"},
        {[] { return taken(ZEL_UTF8ToEscapedUnicode("\xC3\xA9", 1)); }, {"(null)"}, "\\u00E9"},
        {[] { return taken(ZEL_UTF8ToLocal("\xA9", nullptr)); }, {"(null)"}, "?"},
        {buffer_converted, {"(untouched)", "\xE9"}, "\x1B$)C\x1A"},
        {element_converted, {"(null)", "\x88\x9F"}, "\x4E\x9C"},
    };
    for (const auto &row : rows) {
        std::set<std::string> results = results_without_memory(row.call, row.whole);
        EXPECT_EQ(results.erase(row.whole), 1u) << row.whole;
        EXPECT_EQ(results, row.failed);
    }
}

TEST(Memory, that_runs_out_leaves_a_conversion_with_a_copy_or_nothing) {
    start_library();
    expect_stated_results_without_memory();
}

TEST(Memory, that_runs_out_inside_ICU_as_well_leaves_no_more_and_no_less) {
    UErrorCode status = U_ZERO_ERROR;
    u_setMemoryFunctions(
        nullptr, [](const void *, std::size_t size) { return std::malloc(size); },
        [](const void *, void *block, std::size_t size) { return std::realloc(block, size); },
        [](const void *, void *block) { std::free(block); }, &status);
    ASSERT_TRUE(U_SUCCESS(status));
    start_library();
    ASSERT_TRUE(list_head()); // what ICU sets up only once it does not try again
    expect_stated_results_without_memory();
}

} // namespace
