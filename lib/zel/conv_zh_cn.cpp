// HZ to GB 2312 (RFC 1843) by a walk of two states, and Big5 and GB 2312 by maps of characters, in which the
// two bytes of a pair index their cell.

#include "conv_zh_cn.h"

#include "conv.h"
#include "conv_runs.h"
#include "tables/cell_map.h"
#include "zel.h"
#include "zel/base/frame.h"

#include <cstddef>

namespace zel {
namespace {

struct hz_text {
    bool gb = false;
    bool pass_8bit = passes_8bit();

    static constexpr bool needs_trail = false;
    static constexpr std::size_t opening = 2;
    static constexpr std::size_t closing = 2;
    static constexpr auto change_pairs = copy_with_high_bits;

    static signed_bytes ends_singles(signed_bytes bytes) { return is_high(bytes) | is_byte(bytes, '~'); }
    static signed_bytes ends_pairs(signed_bytes bytes) { return is_byte(bytes, '~'); }
    static bool opens_pairs(const unsigned char *at) { return at[0] == '~' && at[1] == '{'; }
    static bool closes_pairs(const unsigned char *at) { return at[0] == '~' && at[1] == '}'; }
    bool takes_step(unsigned char byte) const { return byte < 0x80 || gb; }

    void step(bit_per_byte singles, bit_per_byte pairs, byte_pass &pass) {
        gb = step_through_shifts<hz_text>(singles, pairs, pass, gb);
    }

    // True if what stands next only told how to read on.
    bool take_escape(input &from) {
        if (peek(from) != '~')
            return false;
        const unsigned char second = peek(from, 1);
        const unsigned char shift = gb ? '}' : '{';
        if (second == shift)
            gb = !gb;
        else if (gb || second != '\n')
            return false;
        from.at += 2;
        return true;
    }

    bool put_character(input &from, output &to) const {
        const unsigned char byte = take(from);
        if (gb)
            return put_high_pair(to, byte, take(from));
        if (byte == '~' && peek(from) == '~')
            take(from);
        return put(to, as_7bit(byte, pass_8bit));
    }

    bool take_unit(input &from, output &to) { return take_escape(from) || put_character(from, to); }
};

// Two bytes become the cell that they index.
void map_pair(const cell_map &map, unsigned char *to, const unsigned char *from) {
    std::uint16_t place;
    std::memcpy(&place, from, sizeof place);
    std::memcpy(to, &map[place], sizeof(cell));
}

// Characters of one charset on their way into the other. No text of them is irregular.
template <const cell_map &map>
struct mapped_text {
    static constexpr bool needs_trail = false;

    static signed_bytes ends_singles(signed_bytes bytes) { return is_between(bytes, first_lead, last_lead); }
    static signed_bytes ends_pairs(signed_bytes bytes) { return ~ends_singles(bytes); }
    static bool takes_step(unsigned char) { return true; }

    static void map_lane(unsigned char *to, const unsigned char *from) {
        for (std::size_t at = 0; at < lane_step; at += sizeof(cell))
            map_pair(map, to + at, from + at);
    }

    static void step(bit_per_byte singles, bit_per_byte pairs, byte_pass &pass) {
        const std::size_t start = length_of_singles(singles);
        copy_singles(pass, start);
        copy_pairs(pass, length_of_pairs(pairs, start), map_lane);
    }

    static bool take_unit(input &from, output &to) {
        const unsigned char byte = take(from);
        if (byte < first_lead)
            return put(to, byte);
        const cell &other = map[place_of(byte, take(from))];
        return put_pair(to, other[0], other[1]);
    }
};

} // namespace

void convert_hz_to_gb(input from, output &to) {
    hz_text text;
    convert_by_steps(text, from, to);
}

void convert_big5_to_gb(input from, output &to) {
    mapped_text<gb_of_big5> text;
    convert_by_steps(text, from, to);
}

void convert_gb_to_big5(input from, output &to) {
    mapped_text<big5_of_gb> text;
    convert_by_steps(text, from, to);
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
