// Charsets of one or two bytes a character to UTF-8. A block goes through two stages, neither of which
// branches on the text. Each byte has a slot of two bytes, so that a character of two bytes has room for the
// three that it mostly becomes:
//
//     text            a    [82 a0]      b
//     slots           a.   e3 81 82.    b.       each character is stored over the slots of its bytes
//     squeezed        a    e3 81 82     b        the dots are left out
//
// Invariant: a block in which a character has another length than most goes its own way, and gives the same.

#include "zel/fast_path/characters.h"
#include "zel/fast_path/table_transcoders.h"

#include "zel/simd/squeeze.h"

namespace zel {
namespace {

constexpr std::size_t slots_size = 2 * block_size;

// A character becomes three bytes at most.
constexpr std::size_t longest_result = 3 * block_size + squeeze_slack;

void store_slots(unsigned char *slots, const block64 &block) {
    for (const vector_bytes &bytes : block.vectors) {
        const vector_pair pair = interleaved(bytes, vector_bytes{});
        store_vector(slots, pair.first);
        store_vector(slots + vector_size, pair.last);
        slots += 2 * vector_size;
    }
}

// The two bytes at each place of a block as a number, the first byte highest.
void store_pair_numbers(std::uint16_t *pair_numbers, const block64 &block) {
    for (std::size_t i = 0; i < std::size(block.vectors); ++i) {
        const vector_bytes next = i + 1 < std::size(block.vectors) ? block.vectors[i + 1] : vector_bytes{};
        const vector_pair both = numbers_of(moved_down<1>(block.vectors[i], next), block.vectors[i]);
        store_vector(pair_numbers + i * vector_size, both.first);
        store_vector(pair_numbers + i * vector_size + vector_size / 2, both.last);
    }
}

template <ascii Kept, instructions Set>
struct from_double_bytes {
    const code_table *table;

    static constexpr auto policy = when_full::give_up;
    static constexpr auto set = Set;
    static constexpr std::size_t reads = block_size;
    static constexpr std::size_t writes = longest_result;

    // Gives what the bytes of all characters have in common, bit by bit.
    utf8_character store_characters(unsigned char *slots, const block64 &block, bitmask64 leads) const {
        std::uint16_t pair_numbers[block_size];
        store_pair_numbers(pair_numbers, block);
        std::uint32_t common = ~std::uint32_t{0}; // the builtin, as libstdc++ 10 lacks std::bit_cast
        for (; leads; leads = without_first(leads)) {
            const std::size_t place = first_of(leads);
            const utf8_character &character = table->pairs[pair_numbers[place]];
            std::memcpy(slots + 2 * place, &character, sizeof character);
            common &= __builtin_bit_cast(std::uint32_t, character);
        }
        return __builtin_bit_cast(utf8_character, common);
    }

    static unsigned char *squeeze_zeros(unsigned char *to, const unsigned char *slots) {
        for (std::size_t at = 0; at < slots_size; at += vector_size) {
            const unsigned kept = bits_of(~are_byte(load_vector(slots + at), 0));
            to = squeeze<Set>(to, slots + at, kept & 0xFF);
            to = squeeze<Set>(to, slots + at + squeeze_step, kept >> squeeze_step);
        }
        return to;
    }

    status block_step(cursors &at) const {
        const block64 block = load_block(at.from);
        const bitmask64 high = mask_of(block, are_high);
        if (Kept == ascii::plain_text && has_any(block, are_special_controls)) [[unlikely]]
            return status::declined;
        if (!high) {
            copy_kept<are_not_kept<Kept>, Set>(at, block);
            return status::done;
        }
        bitmask64 leads = lead_bytes_among(high);
        const std::size_t length = whole_characters(leads, left(at));
        if (length == 0)
            return status::declined;
        leads &= first_bits(length);
        unsigned char slots[slots_size + 2];
        store_slots(slots, block);
        const utf8_character common = store_characters(slots, block, leads);
        if (is_continuation(common[2])) // all have three bytes
            at.to = squeeze_block_of_slots<Set>(at.to, slots, leads);
        else if (is_continuation(common[1]) && !places_of(0, block))
            at.to = squeeze_zeros(at.to, slots);
        else
            return status::declined;
        at.to -= block_size - length; // each byte behind the characters has become one
        at.from += length;
        return status::done;
    }

    status scalar_step(cursors &at) const {
        const unsigned char byte = take(at);
        if (!table->leads[byte])
            return put_single(at, *table, byte);
        return ended(at) ? status::needs_icu : put_pair(at, *table, byte, take(at));
    }
};

template <instructions Set>
struct from_single_bytes {
    const code_table *table;

    static constexpr auto policy = when_full::give_up;
    static constexpr auto set = Set;
    static constexpr std::size_t reads = block_size;
    static constexpr std::size_t writes = longest_result;

    // An empty slot is that of a character of another length, or of a NUL.
    static bool has_empty_slot(const unsigned char *slots) {
        vector_mask empty = {};
        for (std::size_t at = 0; at < slots_size; at += vector_size)
            empty = empty | are_pairs_zero(load_vector(slots + at));
        return any(empty);
    }

    bool store_all(unsigned char *slots, const unsigned char *from) const {
        for (std::size_t place = 0; place < block_size; ++place)
            std::memcpy(slots + 2 * place, &table->slots[from[place]], 2);
        return !has_empty_slot(slots);
    }

    bool store_high(unsigned char *slots, const unsigned char *from, bitmask64 high) const {
        bool found = true;
        for (; high; high = without_first(high)) {
            const std::size_t place = first_of(high);
            const auto &slot = table->slots[from[place]];
            std::memcpy(slots + 2 * place, &slot, 2);
            found &= slot[0] != 0;
        }
        return found;
    }

    // Gives whether each character has its common length.
    bool store_characters(unsigned char *slots, const block64 &block, const unsigned char *from,
                          bitmask64 high) const {
        constexpr int few = 12; // to look up more costs as much as to look up all
        if (std::popcount(high) > few)
            return store_all(slots, from);
        store_slots(slots, block);
        return store_high(slots, from, high);
    }

    // For all lengths: four bytes are stored for a character, and as many kept as it has.
    bool put_each(cursors &at, std::size_t bytes) const {
        unsigned char *to = at.to;
        bool found = true;
        for (std::size_t place = 0; place < bytes; ++place) {
            const unsigned char byte = at.from[place];
            std::memcpy(to, &table->singles[byte], sizeof(utf8_character));
            to += table->lengths[byte];
            found &= table->lengths[byte] != 0;
        }
        if (found) {
            at.to = to;
            at.from += bytes;
        }
        return found;
    }

    status block_step(cursors &at) const {
        const block64 block = load_block(at.from);
        const bitmask64 high = mask_of(block, are_high);
        if (!high) {
            copy_kept<are_not_kept<ascii::all>, Set>(at, block);
            return status::done;
        }
        const std::size_t length = std::min(left(at), block_size);
        unsigned char slots[slots_size];
        if (!store_characters(slots, block, at.from, high))
            return put_each(at, length) ? status::done : status::declined;
        at.to = squeeze_block_of_slots<Set>(at.to, slots, high) - (block_size - length);
        at.from += length;
        return status::done;
    }

    status scalar_step(cursors &at) const { return put_single(at, *table, take(at)); }
};

template <instructions Set>
using from_double_bytes_all = from_double_bytes<ascii::all, Set>;
template <instructions Set>
using from_double_bytes_plain = from_double_bytes<ascii::plain_text, Set>;

} // namespace

transcoder transcoder_to_utf8(charset_kind from, bool keeps_ascii) {
    if (from == charset_kind::iso2022jp)
        return transcoder_from_jis_to_utf8();
    if (!keeps_ascii)
        return transcoder_by<from_double_bytes_plain>();
    return from == charset_kind::single_byte ? transcoder_by<from_single_bytes>()
                                             : transcoder_by<from_double_bytes_all>();
}

} // namespace zel
