#include "zel/conversion/table_conversion.h"
#include "zel/conversion/table_steps.h"

namespace zel {
namespace {

using eight_bytes = unsigned char __attribute__((vector_size(lane_step / 2)));

// Whether four characters of two bytes stand side by side: an alphabet of its own, and not letters strewn
// through ASCII.
bool has_words(const utf8_block &seen) {
    const bit_per_byte twos = seen.leads_of_two & seen.leads_of_two >> 2;
    return (twos & twos >> 4) != 0;
}

// Each character of a block becomes a byte: those of two bytes one by one, by their leads, and the runs of
// ASCII between them.
bool put_singles(const code_table &table, byte_pass &pass, bit_per_byte leads, std::size_t bytes) {
    std::size_t at = 0;
    bool found = true;
    for (; leads; leads &= leads - 1) {
        const auto lead = static_cast<std::size_t>(std::countr_zero(leads));
        const unsigned char code = table.codes[code_point_of_two(pass.from + lead)][1];
        copy_between(pass.from + at, pass, lead - at);
        *pass.to++ = code;
        found &= code != 0;
        at = lead + 2;
    }
    copy_between(pass.from + at, pass, bytes - at);
    pass.from += bytes;
    return found;
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
bool put_words(const code_table &table, byte_pass &pass, bit_per_byte high, std::size_t bytes) {
    const unsigned char *const end = pass.from + bytes;
    bool found = true;
    for (bit_per_byte rest = high; rest;) {
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
        return put_by_leads(table, pass, leads(seen) & first_bytes(bytes), seen.leads_of_three);
    return has_words(seen) ? put_words(table, pass, seen.high & first_bytes(bytes), bytes)
                           : put_singles(table, pass, seen.leads_of_two & first_bytes(bytes), bytes);
}

} // namespace

// Byte by byte without a branch, as the runs of ASCII are short.
verdict convert_singles(const byte_table &table, byte_pass &whole) {
    return walk(whole, [&](byte_pass &pass) {
        if (!any(is_high(load_bytes(pass.from)))) {
            copy_run<ascii_run::whole>(pass);
            return true;
        }
        const std::size_t bytes = std::min(left(pass), lane_step);
        bool found = true;
        for (std::size_t i = 0; i < bytes; ++i)
            found &= put_character(pass, table[pass.from[i]]);
        pass.from += bytes;
        return found;
    });
}

verdict convert_utf8_to_singles(const code_table &table, byte_pass &whole) {
    return walk(whole, [&](byte_pass &pass) {
        if (any(is_high(load_bytes(pass.from))))
            return convert_block_to_singles(table, pass);
        copy_run<ascii_run::whole>(pass);
        return true;
    });
}

} // namespace zel
