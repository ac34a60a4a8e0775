#include "zel/conversion/fast_road.h"

#include "zel/base/charset_names.h"
#include "zel/base/frame.h"
#include "zel/base/output.h"
#include "zel/base/records.h"

#include <algorithm>
#include <cstring>

namespace zel {
namespace {

constexpr std::uint64_t worth_a_table =
    std::uint64_t{100} * 1024; // bytes; a host that converts less pays nothing

// One between a charset and UTF-8 serves both directions, and has UTF-8 for its second name.
struct table_entry {
    heap_string charset;
    heap_string other;
    owned_code_table table; // null where the pair can have none, or none had memory
    record_link<table_entry> next;
};

record_link<table_entry> tables{nullptr};

const table_entry *find_table(const char *charset, const char *other) {
    const table_entry *entry = tables.load(std::memory_order_acquire);
    while (entry && !(same_name(entry->charset.get(), charset) && same_name(entry->other.get(), other)))
        entry = entry->next.load(std::memory_order_acquire);
    return entry;
}

// Two threads may build the same table at once; either copy serves.
const table_entry *add_table(const char *charset, const char *other) {
    owned_record<table_entry> entry = new_record<table_entry>();
    if (!entry)
        return nullptr;
    entry->charset.reset(strdup(charset));
    entry->other.reset(strdup(other));
    entry->table = same_name(other, encUTF8) ? build_code_table(charset) : build_byte_table(charset, other);
    if (!entry->charset || !entry->other)
        return nullptr;
    const table_entry *linked = entry.get();
    const held_lock lock = hold(encodingconverter_lock);
    append_record(&tables, &table_entry::next, std::move(entry));
    return linked;
}

table_conversion choose_conversion(const char *from_charset, const char *to_charset) {
    if (same_name(from_charset, encUTF8))
        return same_name(to_charset, ianaISO2022JP) ? convert_utf8_to_jis : convert_from_utf8;
    if (same_name(to_charset, encUTF8))
        return same_name(from_charset, ianaISO2022JP) ? convert_jis_to_utf8 : convert_to_utf8;
    return convert_singles;
}

// Asked for twice in a row, as a byte may change how the next one is read or written.
bool keeps(UConverter *from_cnv, UConverter *to_cnv, char byte) {
    constexpr std::int32_t count = 2;
    const char text[count] = {byte, byte};
    UChar units[8];
    char bytes[16];
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t taken = ucnv_toUChars(from_cnv, units, std::size(units), text, count, &status);
    const auto same = [byte](UChar unit) { return unit == static_cast<UChar>(byte); };
    if (U_FAILURE(status) || taken != count || !std::all_of(units, units + count, same))
        return false;
    const std::int32_t put = ucnv_fromUChars(to_cnv, bytes, std::size(bytes), units, count, &status);
    return U_SUCCESS(status) && put == count && std::equal(bytes, bytes + count, text);
}

ascii_identity kept_ascii(UConverter *from_cnv, UConverter *to_cnv) {
    ascii_identity kept;
    for (unsigned value = 0; value < kept.size(); ++value) {
        kept[value] = keeps(from_cnv, to_cnv, static_cast<char>(value));
        if (belongs_to<ascii_run::text>(static_cast<unsigned char>(value)) && !kept[value])
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
    // ICU takes all of the text in before it writes, and so it may convert in place.
    if (overlap(text, {to_buf, static_cast<std::size_t>(to_size)}))
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
    if (same_name(from_charset, encUTF8))
        std::swap(from_charset, to_charset);
    const table_entry *entry = find_table(from_charset, to_charset);
    if (!entry)
        entry = add_table(from_charset, to_charset);
    if (entry)
        road.table.store(entry->table.get(), std::memory_order_release);
}

void release_tables() {
    owned_record<table_entry> entry(tables.exchange(nullptr, std::memory_order_relaxed));
    while (entry)
        entry.reset(entry->next.load(std::memory_order_relaxed));
}

} // namespace zel
