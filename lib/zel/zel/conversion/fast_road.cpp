#include "zel/conversion/fast_road.h"

#include "zel/base/charset_names.h"
#include "zel/base/frame.h"

#include <cstring>
#include <new>

namespace zel {
namespace {

constexpr std::uint64_t worth_a_table =
    std::uint64_t{100} * 1024; // bytes; a host that converts less pays nothing

struct table_entry {
    heap_string charset;
    owned_code_table table; // null where the charset can have none
    std::atomic<table_entry *> next;
};

std::atomic<table_entry *> tables{nullptr};

void discard_entry(table_entry *entry) {
    const heap<table_entry> memory(entry);
    std::destroy_at(entry);
}

using owned_entry = owned<table_entry, &discard_entry>;

const table_entry *find_table(const char *charset) {
    const table_entry *entry = tables.load(std::memory_order_acquire);
    while (entry && !same_name(entry->charset.get(), charset))
        entry = entry->next.load(std::memory_order_acquire);
    return entry;
}

// Two threads may build the same table at once; the second copy stays unused.
const table_entry *add_table(const char *charset) {
    void *memory = xmalloc(sizeof(table_entry));
    if (!memory)
        return nullptr;
    owned_entry entry(new (memory) table_entry{});
    entry->charset.reset(strdup(charset));
    entry->table = build_code_table(charset);
    if (!entry->charset)
        return nullptr;
    const held_lock lock = hold(encodingconverter_lock);
    std::atomic<table_entry *> *end = &tables;
    while (table_entry *linked = end->load(std::memory_order_relaxed))
        end = &linked->next;
    end->store(entry.get(), std::memory_order_release);
    return entry.release();
}

table_conversion choose_conversion(const char *from_charset, const char *to_charset) {
    if (same_name(from_charset, encUTF8))
        return same_name(to_charset, ianaISO2022JP) ? convert_utf8_to_jis : convert_from_utf8;
    if (same_name(to_charset, encUTF8))
        return same_name(from_charset, ianaISO2022JP) ? convert_jis_to_utf8 : convert_to_utf8;
    return nullptr;
}

bool keeps(UConverter *from_cnv, UConverter *to_cnv, char byte) {
    UChar units[4];
    char bytes[4];
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t taken = ucnv_toUChars(from_cnv, units, std::size(units), &byte, 1, &status);
    if (U_FAILURE(status) || taken != 1 || units[0] != static_cast<UChar>(byte))
        return false;
    const std::int32_t put = ucnv_fromUChars(to_cnv, bytes, std::size(bytes), units, 1, &status);
    return U_SUCCESS(status) && put == 1 && bytes[0] == byte;
}

ascii_identity kept_ascii(UConverter *from_cnv, UConverter *to_cnv) {
    ascii_identity kept;
    for (unsigned value = 0; value < kept.size(); ++value) {
        kept[value] = keeps(from_cnv, to_cnv, static_cast<char>(value));
        if (belongs_to<ascii_run::printable>(static_cast<unsigned char>(value)) && !kept[value])
            return {};
    }
    return kept;
}

} // namespace

void prepare_road(fast_road &road, const char *from_charset, const char *to_charset, UConverter *from_cnv,
                  UConverter *to_cnv) {
    road.kept = kept_ascii(from_cnv, to_cnv);
    road.convert = road.kept.any() ? choose_conversion(from_charset, to_charset) : nullptr;
}

verdict convert_by_road(const fast_road &road, std::string_view text, char *to_buf, std::int32_t to_size,
                        std::int32_t &length) {
    const code_table *table = road.table.load(std::memory_order_acquire);
    if (to_size < 0 || (!table && road.kept.none()))
        return verdict::undecided;
    auto *from = reinterpret_cast<const unsigned char *>(text.data());
    auto *to = reinterpret_cast<unsigned char *>(to_buf);
    byte_pass pass = {from, from + text.size(), to, to + to_size};
    const verdict answer = table ? road.convert(*table, pass) : copy_ascii(road.kept, pass);
    length = static_cast<std::int32_t>(pass.to - to);
    if (answer == verdict::done && pass.to != pass.to_end)
        *pass.to = '\0';
    return answer;
}

void note_conversion(fast_road &road, const char *from_charset, const char *to_charset, std::size_t bytes) {
    if (!road.convert || road.table.load(std::memory_order_relaxed))
        return;
    const std::uint64_t before = road.converted.fetch_add(bytes, std::memory_order_relaxed);
    if (before / worth_a_table == (before + bytes) / worth_a_table)
        return;
    const char *charset = same_name(from_charset, encUTF8) ? to_charset : from_charset;
    const table_entry *entry = find_table(charset);
    if (!entry)
        entry = add_table(charset);
    if (entry)
        road.table.store(entry->table.get(), std::memory_order_release);
}

void release_tables() {
    owned_entry entry(tables.exchange(nullptr, std::memory_order_relaxed));
    while (entry)
        entry.reset(entry->next.load(std::memory_order_relaxed));
}

} // namespace zel
