// The tables of the fast path. A charset has one, for texts from and to UTF-8, and so have two charsets of
// single bytes; all pairs of names that ICU opens as these share it. It is built once so much of their text
// went through ICU that it is worth it.
//
// Invariant: there is one entry for what ICU calls a charset, and it stays until the stop. Its table is
// complete before it is published (release store), and is read without a lock (acquire load).

#pragma once

#include "zel/base/records.h"
#include "zel/fast_path/code_table.h"

#include <cstdint>

namespace zel {

template <class Table>
struct shared_table {
    heap_string from;
    heap_string to;
    std::atomic<std::uint64_t> converted; // bytes of text that went through ICU
    heap<Table> memory;                   // of the thread that builds the table
    std::atomic<const Table *> ready;     // null until it is built
    record_link<shared_table> next;
};

// By the names that ICU has for the charsets; null where there is no memory.
shared_table<code_table> *share_code_table(const char *charset);
shared_table<byte_table> *share_byte_table(const char *from, const char *to);

// Counts text that went through ICU. The thread that reaches the mark builds the table.
void earn_table(shared_table<code_table> &shared, std::size_t bytes);
void earn_table(shared_table<byte_table> &shared, std::size_t bytes);

template <class Table>
const Table *table_of(const shared_table<Table> *shared) {
    return shared ? shared->ready.load(std::memory_order_acquire) : nullptr;
}

void release_tables();

} // namespace zel
