// HZ to GB 2312 (RFC 1843) by a walk of two states, and Big5 and GB 2312 by maps of characters, in which the
// two bytes of a pair index their cell.

#include "tables/cell_map.h"
#include "zel.h"
#include "zel/base/frame.h"
#include "zel/direct/converters.h"

namespace zel {
namespace {

struct hz_text {
    bool pass_8bit = passes_8bit();
    bool in_pairs = false; // of GB 2312

    static constexpr auto policy = when_full::keep_characters;
    static constexpr auto set = instructions::base;
    static constexpr std::size_t reads = runs_read;
    static constexpr std::size_t writes = step_writes;
    static constexpr std::size_t opening = 2;
    static constexpr std::size_t closing = 2;

    static vector_mask ends_singles(vector_bytes bytes) { return are_high(bytes) | are_byte(bytes, '~'); }
    static vector_mask ends_pairs(vector_bytes bytes) { return are_byte(bytes, '~'); }
    static bool put_pairs(cursors &at, std::size_t bytes) {
        return change_pairs(at, bytes, copy_with_high_bits);
    }
    static bool opens_pairs(const unsigned char *at) { return at[0] == '~' && at[1] == '{'; }
    static bool closes_pairs(const unsigned char *at) { return at[0] == '~' && at[1] == '}'; }

    bool in_singles() const { return !in_pairs; }
    bool begins_run(unsigned char byte) const { return byte < 0x80 || in_pairs; }
    void take_runs(const chunk &of, std::size_t place, cursors &at) {
        take_shifted_runs(*this, of, place, at);
    }

    status block_step(cursors &at) { return take_chunk(*this, at); }

    // True if the byte only begins what tells how to read on.
    bool take_escape(unsigned char byte, cursors &at) {
        if (byte != '~')
            return false;
        const unsigned char second = peek(at);
        const unsigned char shift = in_pairs ? '}' : '{';
        if (second == shift)
            in_pairs = !in_pairs;
        else if (in_pairs || second != '\n')
            return false;
        take(at);
        return true;
    }

    bool put_character(unsigned char byte, cursors &at) const {
        if (in_pairs)
            return put_with_high_bits(at, byte, take(at));
        if (byte == '~' && peek(at) == '~')
            take(at);
        return put(at, as_7bit(byte, pass_8bit));
    }

    status scalar_step(cursors &at) {
        const unsigned char byte = take(at);
        return done_if(take_escape(byte, at) || put_character(byte, at));
    }
};

// Characters of one charset on their way into the other, where each stands in the same place. No text of them
// is irregular.
template <const cell_map &map>
struct mapped_text {
    static constexpr auto policy = when_full::keep_characters;
    static constexpr auto set = instructions::base;
    static constexpr std::size_t reads = block_size;
    static constexpr std::size_t writes = block_size;

    static vector_mask are_leads(vector_bytes bytes) { return are_between(bytes, first_lead, last_lead); }

    static void map_character(unsigned char *to, const unsigned char *from) {
        const cell &other = map[place_of(from[0], from[1])];
        std::memcpy(to, &other, sizeof other);
    }

    static status block_step(cursors &at) {
        const block64 block = load_block(at.from);
        const bitmask64 candidates = mask_of(block, are_leads);
        if (!candidates) {
            copy_kept<are_leads, instructions::base>(at, block);
            return status::done;
        }
        bitmask64 leads = lead_bytes_among(candidates);
        const std::size_t length = whole_characters(leads, left(at));
        if (length == 0)
            return status::declined;
        store_block(at.to, block);
        for (leads &= first_bits(length); leads; leads = without_first(leads))
            map_character(at.to + first_of(leads), at.from + first_of(leads));
        at.from += length;
        at.to += length;
        return status::done;
    }

    static status scalar_step(cursors &at) {
        const unsigned char byte = take(at);
        if (byte < first_lead)
            return done_if(put(at, byte));
        const cell &other = map[place_of(byte, take(at))];
        return done_if(put(at, other[0], other[1]));
    }
};

} // namespace

void convert_hz_to_gb(input from, output &to) {
    hz_text text;
    convert_directly(text, from, to);
}

void convert_big5_to_gb(input from, output &to) {
    mapped_text<gb_of_big5> text;
    convert_directly(text, from, to);
}

void convert_gb_to_big5(input from, output &to) {
    mapped_text<big5_of_gb> text;
    convert_directly(text, from, to);
}

} // namespace zel

int32_t hz2gb(const char *from_buf, int32_t from_len, char *to_buf, int32_t to_size) {
    return zel::convert_for_caller(zel::convert_hz_to_gb, from_buf, from_len, to_buf, to_size);
}

int32_t big2gb(const char *from_buf, int32_t from_len, char *to_buf, int32_t to_size) {
    return zel::convert_for_caller(zel::convert_big5_to_gb, from_buf, from_len, to_buf, to_size);
}

int32_t gb2big5(const char *from_buf, int32_t from_len, char *to_buf, int32_t to_size) {
    return zel::convert_for_caller(zel::convert_gb_to_big5, from_buf, from_len, to_buf, to_size);
}
