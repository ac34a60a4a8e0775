// The cache of converter pairs: which record it lends, and how its lists grow.

#include "support.h"

#include "zel/conversion/converter_cache.h"

#include <thread>
#include <vector>

#include <pthread.h>

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
    for (const auto &[from_charset, to_charset] :
         {std::pair{"ascii", "utf-8"}, {"us-ascii", "utf8"}, {"utf-8", "us-ascii"}, {"utf-8", "utf-8"}}) {
        EXPECT_EQ(ZEL_EncodingConverterExists(from_charset, to_charset), 1);
        EXPECT_NE(borrow_converter(from_charset, to_charset).get(), head);
    }
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

constexpr const char *charsets[] = {"koi8-r", "Shift_JIS", "euc-kr", "big5"};

// At each step all threads borrow the same pair at once, and before it two each another.
void borrow_in_step(std::size_t worker, pthread_barrier_t &all) {
    for (std::size_t step = 0; step < 60; ++step) {
        pthread_barrier_wait(&all);
        EXPECT_TRUE(borrow_converter("utf-8", charsets[(worker + step) % std::size(charsets)]));
        const lent_converter lent = borrow_converter(charsets[step % std::size(charsets)], "utf-8");
        EXPECT_EQ(lent->in_use, 1);
        pthread_barrier_wait(&all);
    }
}

TEST(ConverterCache, has_eight_records_of_a_pair_for_eight_threads_and_goes_back_to_the_first) {
    start_library();
    const EncodingConverter *head = list_head();
    pthread_barrier_t all; // std::barrier is not in every standard library that the tests are built with
    pthread_barrier_init(&all, nullptr, 8);
    {
        std::vector<std::jthread> threads;
        for (std::size_t worker = 0; worker < 8; ++worker)
            threads.emplace_back(borrow_in_step, worker, std::ref(all));
    }
    EXPECT_LE(records_behind(head, &EncodingConverter::next_pair),
              8 * 8); // a thread may add what another does
    for (const char *charset : charsets) {
        const EncodingConverter *shared = find_pair(charset, "utf-8"), *other = find_pair("utf-8", charset);
        EXPECT_EQ(records_behind(shared, &EncodingConverter::next_instance), 7);
        EXPECT_LT(records_behind(other, &EncodingConverter::next_instance), 8);
        EXPECT_EQ(borrow_converter(charset, "utf-8").get(), shared);
    }
}

} // namespace
