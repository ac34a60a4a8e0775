#include "zel/conversion/table_conversion.h"

#include "zel/conversion/table_steps.h"

namespace zel {
namespace {

template <ascii_run Run>
verdict convert_pairs_to_utf8(const code_table &table, byte_pass &whole) {
    return walk(whole, [&](byte_pass &pass) {
        const byte_block block = load_block(pass.from);
        if (Run == ascii_run::text && has_any(block, are_controls)) [[unlikely]]
            return convert_characters(table, pass, std::min(left(pass), lane_step));
        const bit_per_byte high = copy_run<Run>(pass, block, ask(block, is_high));
        if (!high)
            return true;
        const std::size_t pairs = pairs_ahead(pass, high);
        return pairs ? convert_pairs(table, pass, pairs) : convert_character(table, pass);
    });
}

bool convert_code_points(const code_table &table, byte_pass &pass, std::size_t bytes) {
    const unsigned char *const end = pass.from + bytes;
    bool found = true;
    while (pass.from < end && found)
        found = convert_code_point(table, pass);
    return found;
}

// A block of characters of all lengths.
template <ascii_run Run>
bool convert_mixture(const code_table &table, byte_pass &pass) {
    const byte_block block = load_block(pass.from);
    if (Run == ascii_run::text && has_any(block, are_controls)) [[unlikely]]
        return convert_code_points(table, pass, std::min(left(pass), lane_step));
    const utf8_block seen = look_at(block);
    const std::size_t whole = whole_bytes(seen, std::min(left(pass), block_size));
    return is_well_formed(seen, whole) &&
           put_by_leads(table, pass, leads(seen) & first_bytes(whole), seen.leads_of_three);
}

// What is no triple is taken for one of a mixture where the turn meets it at once, and else for a stray.
template <ascii_run Run>
verdict convert_utf8_to_pairs(const code_table &table, byte_pass &whole) {
    return walk(whole, [&](byte_pass &pass) {
        const byte_block block = load_block(pass.from);
        if (Run == ascii_run::text && has_any(block, are_controls)) [[unlikely]]
            return convert_code_points(table, pass, std::min(left(pass), lane_step));
        const unsigned char *const start = pass.from;
        const bit_per_byte high = copy_run<Run>(pass, block, ask(block, is_high));
        if (!high)
            return true;
        const std::size_t run = run_ahead(high);
        if (run < 3) [[unlikely]]
            return pass.from != start || convert_mixture<Run>(table, pass);
        return convert_triples(table, pass, run / 3, [&] {
            return pass.from < start + 6 ? convert_mixture<Run>(table, pass)
                                         : convert_code_point(table, pass);
        });
    });
}

} // namespace

verdict convert_to_utf8(const code_table &table, byte_pass &pass) {
    if (!table.keeps_ascii)
        return convert_pairs_to_utf8<ascii_run::text>(table, pass);
    return table.single_byte ? convert_singles(table.singles, pass)
                             : convert_pairs_to_utf8<ascii_run::whole>(table, pass);
}

verdict convert_from_utf8(const code_table &table, byte_pass &pass) {
    if (!table.keeps_ascii)
        return convert_utf8_to_pairs<ascii_run::text>(table, pass);
    return table.single_byte ? convert_utf8_to_singles(table, pass)
                             : convert_utf8_to_pairs<ascii_run::whole>(table, pass);
}

verdict copy_ascii(const ascii_identity &kept, byte_pass &whole) {
    if (kept.all())
        return walk(whole, [](byte_pass &pass) { return copy_run<ascii_run::whole>(pass) == 0; });
    return walk(whole, [&](byte_pass &pass) {
        if (!copy_run<ascii_run::text>(pass))
            return true;
        const unsigned char byte = *pass.from++;
        *pass.to++ = byte;
        return byte < kept.size() && kept[byte];
    });
}

} // namespace zel
