// Text in which single bytes and double-byte characters stand in runs: what the direct converters and the
// 7-bit charsets have in common. It goes chunk by chunk; two bitmaps of a chunk tell where its runs end, and
// are found before the first run is taken, so that no run waits for the end of the one before it. A step
// takes the run of single bytes that stands next and the run of pairs behind it, either of which may be
// empty, or several such runs where they are short:
//
//     text     a b c [ESC $ B] L T L T L T [ESC ( B] d
//              '-----'         '---------'
//              singles          pairs
//
// What is irregular goes character by character, until a run can begin.
//
// Invariant: a run that a step copies is read and stored by whole vectors, but never behind the slack that
// the loop has left.

#pragma once

#include "zel/transcode/transcode.h"

namespace zel {

// The controls of ISO 2022, and the escape sequences of ISO-2022-JP (RFC 1468) that its writers use.
inline constexpr unsigned char SO = 0x0E;
inline constexpr unsigned char SI = 0x0F;
inline constexpr unsigned char ESC = 0x1B;
inline constexpr std::string_view enter_kanji = "\x1B$B"; // JIS X 0208-1983
inline constexpr std::string_view leave_kanji = "\x1B(B"; // ASCII
inline constexpr std::size_t longest_shift = 3;           // which both are
static_assert(enter_kanji.size() == longest_shift && leave_kanji.size() == longest_shift);

// Which set of ISO-2022-JP the text that is written stands in.
struct jis_writer {
    bool in_kanji = false;

    bool change_set(bool to_kanji, cursors &at) {
        if (in_kanji == to_kanji)
            return true;
        if (room(at) < longest_shift)
            return false;
        in_kanji = to_kanji;
        std::memcpy(at.to, (to_kanji ? enter_kanji : leave_kanji).data(), longest_shift);
        at.to += longest_shift;
        return true;
    }
};

// The most that a step stores: both runs, of which pairs may become three bytes, and two shifts.
inline constexpr std::size_t step_writes = block_size + 3 * block_size / 2 + 2 * longest_shift + vector_size;

// Short runs come from 64 bytes, and behind what all but the last have become a block is stored.
static_assert(3 * block_size / 2 + block_size <= step_writes);

// A run that begins with the last byte of a chunk is read by a block.
inline constexpr std::size_t runs_read = 2 * block_size;

inline constexpr std::size_t chunk_blocks = 32;

// A bit for each byte of a chunk, and set bits behind it.
struct bitmap {
    bitmask64 words[chunk_blocks + 2];

    // The bits of 64 bytes.
    bitmask64 from(std::size_t place) const {
        const std::size_t shift = place % block_size;
        const bitmask64 *word = words + place / block_size;
        return word[0] >> shift | word[1] << 1 << (block_size - 1 - shift);
    }
};

struct chunk {
    std::size_t length;
    bitmap ends_singles; // bytes that belong to no run of single bytes
    bitmap ends_pairs;   // bytes that begin no double-byte character of a run
};

// As much of the text as leaves a block behind the chunk, or all that is left of a padded text. A double-byte
// character that begins with the last byte of a text is none.
template <class Text>
void find_runs(chunk &found, const cursors &at) {
    const bool is_last = left(at) < runs_read;
    const std::size_t blocks = is_last ? (left(at) + block_size - 1) / block_size
                                       : std::min(left(at) / block_size - 1, chunk_blocks);
    for (std::size_t i = 0; i < blocks; ++i) {
        const block64 block = load_block(at.from + i * block_size);
        found.ends_singles.words[i] = mask_of(block, Text::ends_singles);
        found.ends_pairs.words[i] = mask_of(block, Text::ends_pairs);
    }
    found.length = is_last ? left(at) : blocks * block_size;
    for (bitmap *ends : {&found.ends_singles, &found.ends_pairs}) {
        if (found.length % block_size)
            ends->words[blocks - 1] |= ~first_bits(found.length % block_size);
        ends->words[blocks] = ends->words[blocks + 1] = ~bitmask64{0};
    }
    if (is_last)
        found.ends_pairs.words[(found.length - 1) / block_size] |= bitmask64{1}
                                                                   << (found.length - 1) % block_size;
}

inline std::size_t run_of_singles(const chunk &of, std::size_t place) {
    return first_of(of.ends_singles.from(place));
}

inline std::size_t run_of_pairs(const chunk &of, std::size_t place) {
    constexpr bitmask64 first_bytes = 0x5555555555555555;
    return first_of(of.ends_pairs.from(place) & first_bytes);
}

inline void copy_singles(cursors &at, std::size_t length) {
    store_block(at.to, load_block(at.from));
    at.from += length;
    at.to += length;
}

// change takes a vector of pairs and stores as many.
template <class Change>
bool change_pairs(cursors &at, std::size_t length, Change change) {
    for (std::size_t done = 0; done < length; done += vector_size)
        change(at.to + done, at.from + done);
    at.from += length;
    at.to += length;
    return true;
}

// Text whose lead bytes tell the double-byte characters. Of it is asked
//   begin_run(of_pairs, at)   puts what stands in front of a run, if anything
//   put_pairs(at, bytes)      changes a run of pairs, or gives false in front of it
template <class Text>
void take_led_runs(Text &text, const chunk &of, std::size_t place, cursors &at) {
    const std::size_t singles = run_of_singles(of, place);
    if (singles > 0) {
        text.begin_run(false, at);
        copy_singles(at, singles);
        place += singles;
    }
    const std::size_t pairs = place < of.length ? run_of_pairs(of, place) : 0;
    if (pairs > 0) {
        text.begin_run(true, at);
        text.put_pairs(at, pairs);
    }
}

// 7-bit text that shifts between single bytes and double-byte characters. Of it is asked
//   in_pairs                     in which run the step begins, and then in which it ends
//   opening, closing             the lengths of the shifts in front of pairs and behind them
//   opens_pairs, closes_pairs    whether such a shift stands at a place
//   put_pairs(at, bytes)         changes a run of pairs; false where it cannot

// The runs whose shifts lie in the next 64 bytes. Shifts end runs of single bytes, so the bitmap of those
// ends holds all shifts, and no run waits for the one before it to be looked through. Stops in front of a run
// that is longer, or whose shift is missing or irregular.
template <class Text>
void take_short_shifted_runs(Text &text, const chunk &of, std::size_t place, cursors &at) {
    const unsigned char *const start = at.from;
    bitmask64 shifts = of.ends_singles.from(place);
    for (;;) {
        const std::size_t opening = first_of(shifts);
        shifts = without_first(shifts);
        const std::size_t closing = first_of(shifts), pairs = opening + Text::opening;
        shifts = without_first(shifts);
        if (closing == block_size || place + closing >= of.length || !Text::opens_pairs(start + opening) ||
            run_of_pairs(of, place + pairs) != closing - pairs || !Text::closes_pairs(start + closing))
            return;
        copy_singles(at, static_cast<std::size_t>(start + opening - at.from));
        at.from += Text::opening;
        text.in_pairs = true;
        if (!text.put_pairs(at, closing - pairs))
            return;
        at.from += Text::closing;
        text.in_pairs = false;
    }
}

// A step.
template <class Text>
void take_shifted_runs(Text &text, const chunk &of, std::size_t place, cursors &at) {
    if (!text.in_pairs) {
        const unsigned char *const start = at.from;
        take_short_shifted_runs(text, of, place, at);
        if (at.from != start)
            return;
        const std::size_t singles = run_of_singles(of, place);
        copy_singles(at, singles);
        if (!Text::opens_pairs(at.from))
            return;
        at.from += Text::opening;
        place += singles + Text::opening;
        text.in_pairs = true;
    }
    if (place >= of.length || !text.put_pairs(at, run_of_pairs(of, place)) || !Text::closes_pairs(at.from))
        return;
    at.from += Text::closing;
    text.in_pairs = false;
}

// A chunk. Of a text is asked, beside what it is asked for a step:
//   ends_singles, ends_pairs   the predicates of the bitmaps
//   take_runs                  a step
//   begins_run(byte)           false where a step would take nothing
//   in_singles                 whether single bytes are copied as they are, where the text has come to
template <class Text>
status take_chunk(Text &text, cursors &whole) {
    if (const block64 block = load_block(whole.from);
        text.in_singles() && !has_any(block, Text::ends_singles)) {
        copy_kept<Text::ends_singles, Text::set>(whole, block);
        return status::done;
    }
    chunk found;
    find_runs<Text>(found, whole);
    cursors at = whole;
    const unsigned char *const end = at.from + found.length;
    status answer = status::done;
    while (answer == status::done && at.from < end && room(at) >= step_writes) {
        const unsigned char *const start = at.from;
        if (text.begins_run(*start))
            text.take_runs(found, static_cast<std::size_t>(start - whole.from), at);
        if (at.from == start)
            answer = text.scalar_step(at);
    }
    whole = at;
    return answer;
}

} // namespace zel
