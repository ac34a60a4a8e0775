// One list of tables by charset and one by two charsets of single bytes, by the names that ICU has for them.
//
// Invariant: links and counters are atomic; exactly one thread reaches the mark, and builds the table.

#include "zel/fast_path/shared_tables.h"

#include "zel/base/charset_names.h"
#include "zel/base/frame.h"

#include <cstring>

namespace zel {
namespace {

constexpr std::uint64_t worth_a_table =
    std::uint64_t{100} * 1024; // bytes; a host that converts less pays nothing

template <class Table>
using table_list = record_link<shared_table<Table>>;

table_list<code_table> code_tables{nullptr};
table_list<byte_table> byte_tables{nullptr};

template <class Table>
shared_table<Table> *find_or_add(table_list<Table> &list, const char *from, const char *to) {
    const held_lock lock = hold(encodingconverter_lock);
    table_list<Table> *link = &list;
    while (shared_table<Table> *shared = link->load(std::memory_order_relaxed)) {
        if (std::strcmp(shared->from.get(), from) == 0 && std::strcmp(shared->to.get(), to) == 0)
            return shared;
        link = &shared->next;
    }
    owned_record<shared_table<Table>> fresh = new_record<shared_table<Table>>();
    if (!fresh)
        return nullptr;
    fresh->from.reset(strdup(from));
    fresh->to.reset(strdup(to));
    if (!fresh->from || !fresh->to)
        return nullptr;
    append_record(link, &shared_table<Table>::next, std::move(fresh));
    return link->load(std::memory_order_relaxed);
}

// Behind the mark nothing is counted, so that threads do not write to one place for ever.
bool reaches_mark(std::atomic<std::uint64_t> &converted, std::size_t bytes) {
    if (converted.load(std::memory_order_relaxed) >= worth_a_table)
        return false;
    const std::uint64_t before = converted.fetch_add(bytes, std::memory_order_relaxed);
    return before < worth_a_table && before + bytes >= worth_a_table;
}

template <class Table>
void publish(shared_table<Table> &shared, heap<Table> table) {
    shared.memory = std::move(table);
    shared.ready.store(shared.memory.get(), std::memory_order_release);
}

template <class Table>
void release_list(table_list<Table> &list) {
    owned_record<shared_table<Table>> shared(list.exchange(nullptr, std::memory_order_relaxed));
    while (shared)
        shared.reset(shared->next.load(std::memory_order_relaxed));
}

} // namespace

shared_table<code_table> *share_code_table(const char *charset) {
    return find_or_add(code_tables, charset, encUTF8);
}

shared_table<byte_table> *share_byte_table(const char *from, const char *to) {
    return find_or_add(byte_tables, from, to);
}

void earn_table(shared_table<code_table> &shared, std::size_t bytes) {
    if (reaches_mark(shared.converted, bytes))
        publish(shared, build_code_table(shared.from.get()));
}

void earn_table(shared_table<byte_table> &shared, std::size_t bytes) {
    if (reaches_mark(shared.converted, bytes))
        publish(shared, build_byte_table(shared.from.get(), shared.to.get()));
}

void release_tables() {
    release_list(code_tables);
    release_list(byte_tables);
}

} // namespace zel
