// Records of lists that are read without a lock.
//
// Invariant: a record is complete before it is appended, is never taken out before the stop, and each link
// changes once, from null to its final value (release store). So a reader may walk the list at any time
// (acquire loads). Whoever appends holds the lock of the list.

#pragma once

#include "zel/base/owned.h"

#include <atomic>
#include <new>

namespace zel {

template <class Record>
using record_link = std::atomic<Record *>;

template <class Record>
void discard_record(Record *record) {
    const heap<Record> memory(record);
    std::destroy_at(record);
}

template <class Record>
using owned_record = owned<Record, &discard_record<Record>>;

// Null where there is no memory.
template <class Record>
owned_record<Record> new_record() {
    void *memory = xmalloc(sizeof(Record));
    return owned_record<Record>(memory ? new (memory) Record{} : nullptr);
}

// From a link of the list on, such as its last. Gives the link behind the record, which is the last now.
template <class Record>
record_link<Record> *append_record(record_link<Record> *link, record_link<Record> Record::*next,
                                   owned_record<Record> record) {
    while (Record *linked = link->load(std::memory_order_relaxed))
        link = &(linked->*next);
    Record *last = record.release();
    link->store(last, std::memory_order_release);
    return &(last->*next);
}

} // namespace zel
