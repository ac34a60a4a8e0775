// ISO-2022-JP to UTF-8 and back, as far as it knows ASCII and JIS X 0208. To UTF-8, runs of single bytes are
// copied, and the characters of a kanji run looked up one by one: that a run ends is told by its escape
// sequence. From UTF-8, all codes of a block are looked up first, and its runs copied to between the escape
// sequences.
//
// Invariant: between two blocks the kernel remembers which run it is in, and nothing else.

#include "zel/fast_path/characters.h"
#include "zel/fast_path/code_look_up.h"
#include "zel/fast_path/table_transcoders.h"

#include "zel/simd/squeeze.h"
#include "zel/transcode/runs.h"

namespace zel {
namespace {

bool stands(const unsigned char *at, std::string_view bytes) {
    return std::memcmp(at, bytes.data(), bytes.size()) == 0;
}

bool take(cursors &at, std::string_view bytes) {
    const bool is_there = left(at) >= bytes.size() && stands(at.from, bytes);
    at.from += is_there ? bytes.size() : 0;
    return is_there;
}

// Other sets, a run of kanji without characters or without its end, and two escape sequences side by side:
// ICU has rules for them.
template <instructions Set>
struct jis_to_utf8 {
    const code_table *table;
    bool in_pairs = false;

    static constexpr auto policy = when_full::give_up;
    static constexpr auto set = Set;
    static constexpr std::size_t reads = runs_read;
    static constexpr std::size_t writes = 3 * block_size + step_writes;
    static constexpr std::size_t opening = longest_shift;
    static constexpr std::size_t closing = longest_shift;

    static vector_mask ends_singles(vector_bytes bytes) { return are_not_kept<ascii::plain_text>(bytes); }
    static vector_mask ends_pairs(vector_bytes bytes) { return ~are_between(bytes, 0x21, 0x7E); }
    static bool opens_pairs(const unsigned char *at) {
        return stands(at, enter_kanji) && at[longest_shift] != ESC;
    }
    static bool closes_pairs(const unsigned char *at) {
        return stands(at, leave_kanji) && at[longest_shift] != ESC;
    }

    // Four bytes are stored for a character, and the two or three kept that it has. What is not decided ends
    // the run.
    bool put_pairs(cursors &whole, std::size_t bytes) const {
        cursors at = whole;
        unsigned lacking = 0; // its highest bit is set by a character that has no second byte
        for (const unsigned char *const end = at.from + bytes; at.from < end; at.from += 2) {
            const utf8_character &character = table->pairs[load_two_bytes(at.from)];
            std::memcpy(at.to, &character, sizeof character);
            at.to += 2 + (character[2] >> 7);
            lacking |= character[1] - 1U;
        }
        const bool is_decided = lacking >> 31 == 0;
        if (is_decided)
            whole = at;
        return is_decided;
    }

    bool in_singles() const { return !in_pairs; }
    bool begins_run(unsigned char byte) const { return byte < 0x80 && (in_pairs || byte != ESC); }
    void take_runs(const chunk &of, std::size_t place, cursors &at) {
        take_shifted_runs(*this, of, place, at);
    }

    status block_step(cursors &at) { return take_chunk(*this, at); }

    status scalar_step(cursors &at) {
        if (peek(at) == ESC) {
            if (!take(at, in_pairs ? leave_kanji : enter_kanji) || peek(at) == ESC)
                return status::needs_icu;
            in_pairs = !in_pairs;
            return status::done;
        }
        const unsigned char byte = zel::take(at);
        return in_pairs ? put_pair(at, *table, byte, zel::take(at)) : put_single(at, *table, byte);
    }

    status finish(const cursors &) const { return in_pairs ? status::needs_icu : status::done; }
};

template <instructions Set>
struct utf8_to_jis {
    const code_table *table;
    jis_writer writer;

    static constexpr auto policy = when_full::give_up;
    static constexpr auto set = Set;
    static constexpr std::size_t reads = block_size;
    // The most comes of characters of two bytes and letters in turn, with an escape sequence in front of
    // each; a block is stored behind it.
    static constexpr std::size_t writes = (block_size / 3 + 1) * (3 + 2 * longest_shift) + block_size;

    // Copies what the characters between two edges of runs have become, and puts an escape sequence at each
    // edge.
    void put_runs(cursors &at, const unsigned char *squeezed, bitmask64 kept, bitmask64 edges) {
        std::size_t done = 0;
        for (; edges; edges = without_first(edges)) {
            const auto end = static_cast<std::size_t>(std::popcount(kept & in_front_of_first(edges)));
            store_block(at.to, load_block(squeezed + done));
            at.to += end - done;
            done = end;
            writer.change_set(!writer.in_kanji, at);
        }
        store_block(at.to, load_block(squeezed + done));
        at.to += static_cast<std::size_t>(std::popcount(kept)) - done;
    }

    status block_step(cursors &at) {
        const block64 block = load_block(at.from);
        const utf8_block shape = utf8_shape<Set>(block);
        if (has_any(block, are_special_controls) || !is_well_formed(shape)) [[unlikely]]
            return status::declined;
        if (!shape.high && !writer.in_kanji) {
            copy_kept<are_not_kept<ascii::plain_text>, Set>(at, block);
            return status::done;
        }
        const std::size_t length = whole_characters(shape, left(at));
        const bitmask64 bytes = first_bits(length);
        unsigned char looked_up[block_size];
        const bitmask64 kept = code_look_up<false, Set>{table}.store_all(looked_up, block, shape, bytes);
        if (!kept) [[unlikely]]
            return status::declined;
        unsigned char squeezed[2 * block_size] = {}; // no byte of the stack goes behind the result
        squeeze_block<Set>(squeezed, looked_up, kept);
        const bitmask64 behind_kanji = shape.high << 1 | bitmask64{writer.in_kanji};
        put_runs(at, squeezed, kept, (shape.high ^ behind_kanji) & bytes);
        at.from += length;
        return status::done;
    }

    status scalar_step(cursors &at) {
        const charset_code code = table->codes[take_code_point(at)];
        if (code == 0)
            return status::needs_icu;
        return writer.change_set(code >= first_double_byte, at) && put_code(at, code) ? status::done
                                                                                      : status::full;
    }

    status finish(cursors &at) { return writer.change_set(false, at) ? status::done : status::full; }
};

} // namespace

transcoder transcoder_from_jis_to_utf8() {
    return transcoder_by<jis_to_utf8>();
}

transcoder transcoder_from_utf8_to_jis() {
    return transcoder_by<utf8_to_jis>();
}

} // namespace zel
