// The index beside the lists: the hash of names, and records found while others are added.

#include "zel/base/name_index.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace zel;

TEST(NameHash, tells_names_apart_but_not_the_case_of_letters) {
    EXPECT_EQ(hash_names("ISO-8859-15", "utf-8"), hash_names("iso-8859-15", "UTF-8"));
    std::set<std::uint64_t> hashes;
    const char *const names[][2] = {{"", ""},          {"", "a"},        {"a", ""},        {"ab", "c"},
                                    {"a", "bc"},       {"1234567", "8"}, {"12345678", ""}, {"", "12345678"},
                                    {"123456789", ""}, {"@", "["},       {"`", "["},       {"@", "{"},
                                    {"\xC0", "["},     {"\xE0", "["}};
    for (const auto &[first, second] : names)
        hashes.insert(hash_names(first, second));
    for (const std::size_t length : {7U, 8U, 16U, 17U})
        hashes.insert(hash_names(std::string(length, 'a').c_str(), "a"));
    EXPECT_EQ(hashes.size(), 18U);
}

struct number {
    int value;
    index_place<number> place;
};

number *find_number(const name_index<number> &index, std::uint64_t hash, int value) {
    return find_record(index, hash, [=](const number &found) { return found.value == value; });
}

TEST(NameIndex, finds_the_first_of_like_records_though_all_have_one_hash) {
    static name_index<number> index = {};
    std::vector<number> records(200);
    for (std::size_t i = 0; i < records.size(); ++i) {
        records[i].value = static_cast<int>(i % 100);
        records[i].place.hash = UINT64_MAX;
        add_to_index(index, records[i]);
    }
    for (int value = 0; value < 100; ++value)
        EXPECT_EQ(find_number(index, UINT64_MAX, value), &records[static_cast<std::size_t>(value)]);
    EXPECT_EQ(find_number(index, UINT64_MAX, 100), nullptr);
    EXPECT_EQ(find_number(index, UINT64_MAX - 1, 0), nullptr);
}

TEST(NameIndex, gives_readers_whole_records_while_another_thread_adds_some) {
    static name_index<number> index = {};
    std::vector<number> records(20'000);
    const auto hash_of = [](int value) { return hash_name(std::to_string(value).c_str()); };
    std::thread reader([&] {
        for (int value = 0; value < 20'000; ++value)
            while (find_number(index, hash_of(value), value) != &records[static_cast<std::size_t>(value)])
                std::this_thread::yield();
    });
    for (int value = 0; auto &record : records) {
        record.value = value;
        record.place.hash = hash_of(value++);
        add_to_index(index, record);
    }
    reader.join();
}

} // namespace
