// The codes of a charset for the characters of a block of UTF-8. Each is stored over the character that it
// replaces, and bits tell which of the bytes are kept then:
//
//     text            a   [e3 81 82]   b   [c3 a9]
//     looked up       a   [82 a0  .]   b   [85 ..]       the dots are not kept
//
// Latin-1 letters that stand for themselves in the charset are not looked up: their codes are worked out.
//
// Invariant: a code is never longer than its character in UTF-8, so that it fits where that one stood.

#pragma once

#include "zel/fast_path/code_table.h"
#include "zel/simd/utf8.h"

namespace zel {

inline bitmask64 zeros_of(const unsigned char *block) {
    return places_of(0, load_block(block));
}

// SingleByte: each character has one byte in the charset. Else most have two.
template <bool SingleByte, instructions Set>
struct code_look_up {
    const code_table *table;

    // Gives whether all of the characters are Latin-1 that the charset shares: there a code is its code
    // point. Behind C2 a continuation byte is the code point, behind C3 it lacks 0x40.
    bool store_latin1(unsigned char *looked_up, const block64 &block, bitmask64 leads) const {
        bitmask64 decided = 0;
        for (std::size_t i = 0; i < std::size(block.vectors); ++i) {
            const vector_bytes first = block.vectors[i];
            const vector_bytes behind =
                i + 1 < std::size(block.vectors) ? block.vectors[i + 1] : vector_bytes{};
            const vector_mask is_c3 = are_byte(first, 0xC3);
            const vector_mask is_lead = is_c3 | are_byte(first, 0xC2);
            const vector_bytes code = moved_down<1>(first, behind) | (is_c3.bytes & 0x40);
            store_vector(looked_up + i * vector_size, select(is_lead, code, first));
            const vector_mask is_shared = are_between(code, table->first_latin1, 0xFF);
            decided |= bitmask64{bits_of(is_lead & is_shared)} << i * vector_size;
        }
        return (leads & ~decided) == 0;
    }

    // Gives whether all of the codes are of the common length.
    bool store_codes(unsigned char *looked_up, const std::uint16_t *units, bitmask64 leads) const {
        constexpr unsigned least = SingleByte ? 1 : first_double_byte;
        unsigned lacking = 0; // its highest bit is set by a code that is less
        for (; leads; leads = without_first(leads)) {
            const std::size_t place = first_of(leads);
            const charset_code code = table->codes[units[place]];
            lacking |= code - least;
            if constexpr (SingleByte)
                looked_up[place] = static_cast<unsigned char>(code);
            else
                store_two_bytes(looked_up + place, code);
        }
        return lacking >> 31 == 0;
    }

    // Stores all codes in a block; gives the bytes that are kept, or none where a character is not decided.
    // The last byte of a block begins no character, as whole_characters() has it.
    bitmask64 store_all(unsigned char *looked_up, const block64 &block, const utf8_block &shape,
                        bitmask64 bytes) const {
        const bitmask64 leads = lead_bytes(shape) & bytes;
        const bitmask64 kept = (SingleByte ? ~shape.continuation : ~shape.continuation | leads << 1) & bytes;
        if (SingleByte && table->first_latin1 && store_latin1(looked_up, block, leads))
            return kept;
        std::uint16_t units[block_size];
        if (store_code_units<Set>(units, block) & leads) [[unlikely]]
            return 0;
        store_block(looked_up, block);
        if (store_codes(looked_up, units, leads)) [[likely]]
            return kept;
        const bitmask64 zeros = zeros_of(looked_up) & kept;
        const bool is_decided =
            (zeros & (leads | ~shape.high)) == 0; // no character without a code, and no NUL
        return is_decided ? kept & ~zeros : 0;    // without the places of second bytes
    }
};

} // namespace zel
