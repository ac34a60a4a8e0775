// The tables between Big5 and GB 2312 as the converters read them: a cell for whatever two bytes, which index
// it as they stand in memory. What has no counterpart is "??" there.

#pragma once

#include <array>
#include <bit>
#include <cstddef>

namespace zel {

inline constexpr unsigned first_lead = 0xA1;
inline constexpr unsigned last_lead = 0xFF;

using cell = std::array<unsigned char, 2>;
using cell_map = std::array<cell, 0x10000>;

extern const cell_map gb_of_big5;
extern const cell_map big5_of_gb;

constexpr std::size_t place_of(unsigned lead, unsigned trail) {
    return std::endian::native == std::endian::little ? trail << 8 | lead : lead << 8 | trail;
}

// A row of the source has columns for the trails from 0x40 to 0x7E, then for those from 0xA1 to 0xFE.
constexpr unsigned big5_index(unsigned lead, unsigned trail) {
    const unsigned row = (lead - first_lead) * 158;
    if (trail >= 0x40 && trail <= 0x7E)
        return row + trail - 0x40;
    return trail >= 0xA1 && trail <= 0xFE ? row + trail - 0x62 : ~0U;
}

// The trail is not tested: one below 0xA1 reaches into the rows before.
constexpr unsigned gb_index(unsigned lead, unsigned trail) {
    return (lead - first_lead) * 94 + trail - 0xA1;
}

template <std::size_t Cells>
constexpr cell_map map_of(const unsigned char (&table)[Cells][2],
                          unsigned (&index_of)(unsigned lead, unsigned trail)) {
    cell_map map = {};
    for (unsigned lead = first_lead; lead <= last_lead; ++lead)
        for (unsigned trail = 0; trail <= 0xFF; ++trail) {
            const unsigned index = index_of(lead, trail);
            const bool is_known = index < Cells && table[index][0] != 0;
            map[place_of(lead, trail)] = is_known ? cell{table[index][0], table[index][1]} : cell{'?', '?'};
        }
    return map;
}

} // namespace zel
