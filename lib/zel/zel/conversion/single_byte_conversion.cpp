#include "zel/conversion/table_conversion.h"
#include "zel/conversion/table_steps.h"

namespace zel {
namespace {

using eight_bytes = unsigned char __attribute__((vector_size(lane_step / 2)));

// What the bytes of a block are in UTF-8, a bit for each.
struct utf8_block {
    bit_per_byte high, leads_of_two, leads_of_three, tails;
};

utf8_block look_at(const byte_block &block) {
    const auto all_between = [&](unsigned char first, unsigned char last) {
        return ask(block, [=](signed_bytes bytes) { return is_between(bytes, first, last); });
    };
    return {ask(block, is_high), all_between(0xC2, 0xDF), all_between(0xE0, 0xEF), ask(block, is_tail)};
}

bit_per_byte leads(const utf8_block &seen) {
    return seen.leads_of_two | seen.leads_of_three;
}

// Whether four characters of two bytes stand side by side: an alphabet of its own, and not letters strewn
// through ASCII.
bool has_words(const utf8_block &seen) {
    const bit_per_byte twos = seen.leads_of_two & seen.leads_of_two >> 2;
    return (twos & twos >> 4) != 0;
}

// How many bytes of the block are whole characters.
std::size_t whole_bytes(const utf8_block &seen, std::size_t bytes) {
    if (bytes < block_size)
        return bytes;
    const bool cut_last = leads(seen) >> (block_size - 1);
    const bool cut_two = seen.leads_of_three >> (block_size - 2) & 1;
    return cut_last ? block_size - 1 : cut_two ? block_size - 2 : block_size;
}

// Whether each lead has its tails, each tail its lead, and no byte is neither. What follows the text is no
// tail of its last character.
bool is_well_formed(const utf8_block &seen, std::size_t bytes) {
    const bit_per_byte expected = leads(seen) << 1 | seen.leads_of_three << 2;
    const bit_per_byte others = seen.high ^ (leads(seen) | seen.tails);
    return expected == seen.tails && (others & ~bit_per_byte{0} >> (block_size - bytes)) == 0;
}

// In one step, as the runs between them are mostly short.
void copy_between(const unsigned char *from, byte_pass &pass, std::size_t length) {
    std::memcpy(pass.to, from, lane_step);
    for (std::size_t at = lane_step; at < length; at += lane_step)
        [[unlikely]] std::memcpy(pass.to + at, from + at, lane_step);
    pass.to += length;
}

// Each character of a block becomes a byte: the high ones one by one, by their leads, and the runs between
// them.
template <bool HasThrees>
bool put_singles(const code_table &table, byte_pass &pass, const utf8_block &seen, std::size_t bytes) {
    std::size_t at = 0;
    unsigned char lowest = 1;
    for (bit_per_byte rest = leads(seen) & ~bit_per_byte{0} >> (block_size - bytes); rest; rest &= rest - 1) {
        const auto lead = static_cast<std::size_t>(std::countr_zero(rest));
        const bool is_three = HasThrees && (seen.leads_of_three >> lead & 1);
        const unsigned char *from = pass.from + lead;
        const unsigned code_point = is_three ? code_point_of_three(from) : code_point_of_two(from);
        const unsigned char code = is_three && code_point < 0x800 ? 0 : table.codes[code_point][1];
        copy_between(pass.from + at, pass, lead - at);
        *pass.to++ = code;
        lowest = std::min(lowest, code);
        at = lead + (is_three ? 3 : 2);
    }
    copy_between(pass.from + at, pass, bytes - at);
    pass.from += bytes;
    return lowest != 0;
}

// Eight numbers out of as many characters of two bytes.
code_lanes code_points_of_twos(const unsigned char *from) {
    code_lanes twos;
    std::memcpy(&twos, from, sizeof twos);
    return is_little_endian ? (twos & 0x1F) << 6 | (twos >> 8 & 0x3F)
                            : (twos >> 8 & 0x1F) << 6 | (twos & 0x3F);
}

// Eight characters of two bytes are looked up, without a branch. False where one of those that the bytes hold
// becomes none.
bool put_twos(const code_table &table, const unsigned char *from, unsigned char *to, std::size_t bytes) {
    const code_lanes code_points = code_points_of_twos(from);
    const auto code = [&](std::size_t i) {
        return std::bit_cast<std::uint16_t>(table.codes[code_points[i]]);
    };
    const code_lanes codes = {code(0), code(1), code(2), code(3), code(4), code(5), code(6), code(7)};
    const auto singles = __builtin_convertvector(is_little_endian ? codes >> 8 : codes, eight_bytes);
    std::memcpy(to, &singles, sizeof singles);
    return (bits_of(reinterpret_cast<signed_bytes>(codes == 0)) & ((1U << bytes) - 1)) == 0;
}

// The same for a block where they stand side by side: word by word.
bool put_words(const code_table &table, byte_pass &pass, const utf8_block &seen, std::size_t bytes) {
    const unsigned char *const end = pass.from + bytes;
    bool found = true;
    for (bit_per_byte rest = seen.high & ~bit_per_byte{0} >> (block_size - bytes); rest;) {
        const auto blank = static_cast<std::size_t>(std::countr_zero(rest));
        copy_between(pass.from, pass, blank);
        pass.from += blank;
        rest >>= blank;
        const auto word = static_cast<std::size_t>(std::countr_zero(~rest | bit_per_byte{1} << lane_step));
        rest >>= word;
        found &= put_twos(table, pass.from, pass.to, word);
        pass.from += word;
        pass.to += word / 2;
    }
    copy_between(pass.from, pass, static_cast<std::size_t>(end - pass.from));
    pass.from = end;
    return found;
}

bool convert_block_to_singles(const code_table &table, byte_pass &pass) {
    const utf8_block seen = look_at(load_block(pass.from));
    const std::size_t bytes = whole_bytes(seen, std::min(left(pass), block_size));
    if (!is_well_formed(seen, bytes))
        return false;
    if (seen.leads_of_three)
        return put_singles<true>(table, pass, seen, bytes);
    return has_words(seen) ? put_words(table, pass, seen, bytes)
                           : put_singles<false>(table, pass, seen, bytes);
}

} // namespace

// Byte by byte without a branch, as the runs of ASCII are short.
verdict convert_singles_to_utf8(const code_table &table, byte_pass &whole) {
    return walk(whole, [&](byte_pass &pass) {
        if (!any(is_high(load_bytes(pass.from))))
            return copy_run<ascii_run::whole>(pass), true;
        const std::size_t bytes = std::min(left(pass), lane_step);
        bool found = true;
        for (std::size_t i = 0; i < bytes; ++i)
            found &= put_character(pass, table.singles[pass.from[i]]);
        pass.from += bytes;
        return found;
    });
}

verdict convert_utf8_to_singles(const code_table &table, byte_pass &whole) {
    return walk(whole, [&](byte_pass &pass) {
        return any(is_high(load_bytes(pass.from))) ? convert_block_to_singles(table, pass)
                                                   : (copy_run<ascii_run::whole>(pass), true);
    });
}

} // namespace zel
