// An index beside a list of records.h, which finds a record by its names without a walk over the list. The
// first bits of the hash of the names choose one of many trees, the next bits a branch at each record of it,
// down to a free place. A record stays in its place, so it is found in as few steps as before, however many
// come later.
//
// The hash has a secret of the process, as names come from the wire: nobody can choose many names that go the
// same way. It does not tell the case of letters apart.
//
// Invariant: a record is complete before it is added, and each link changes once, from null to its final
// value, so a reader takes no lock. Whoever adds holds the lock of the list.

#pragma once

#include "zel/base/records.h"

#include <strings.h>

#include <array>
#include <cstdint>
#include <cstring>

namespace zel {

std::uint64_t hash_name(const char *name);
std::uint64_t hash_names(const char *first, const char *second);

// For names that have one hash: nearly always they are the same, and mostly in one spelling.
inline bool are_same(const char *first, const char *second) {
    return std::strcmp(first, second) == 0 || strcasecmp(first, second) == 0;
}

// Where a record stands in its index; the member is called "place".
template <class Record>
struct index_place {
    std::uint64_t hash;
    std::array<record_link<Record>, 8> branches;
};

template <class Record>
using name_index = std::array<record_link<Record>, 4096>;

// The first bits of the hash choose, and are taken away.
template <class Links>
auto &choose_link(Links &links, std::uint64_t &hash) {
    auto &link = links[static_cast<std::size_t>(hash / (UINT64_MAX / links.size() + 1))];
    hash *= links.size();
    return link;
}

// The first that was added of those that match; null where none does.
template <class Record, class Match>
Record *find_record(const name_index<Record> &index, std::uint64_t hash, Match matches) {
    std::uint64_t rest = hash;
    Record *record = choose_link(index, rest).load(std::memory_order_acquire);
    while (record && !(record->place.hash == hash && matches(*record)))
        record = choose_link(record->place.branches, rest).load(std::memory_order_acquire);
    return record;
}

template <class Record>
void add_to_index(name_index<Record> &index, Record &record) {
    std::uint64_t rest = record.place.hash;
    record_link<Record> *link = &choose_link(index, rest);
    while (Record *above = link->load(std::memory_order_relaxed))
        link = &choose_link(above->place.branches, rest);
    link->store(&record, std::memory_order_release);
}

} // namespace zel
