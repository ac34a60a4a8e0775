// UTF-8 to charsets of one or two bytes a character. A block goes through two stages, neither of which
// branches on the order of its characters, so that its cost goes by its bytes and hardly by their order:
//
//     text            a   [e3 81 82]   b   [c3 a9]       and which bytes begin a character, as bitmasks
//     looked up       a   [82 a0  .]   b   [85 ..]       each code is stored over the character it replaces
//     squeezed        a    82 a0       b    85           bytes that no code needs are left out
//
// Latin-1 letters that stand for themselves in the charset are not looked up: their codes are worked out.
//
// Invariant: a code is never longer than its character in UTF-8, so that it fits where that one stood.

#include "zel/fast_path/characters.h"
#include "zel/fast_path/table_transcoders.h"

#include "zel/simd/squeeze.h"
#include "zel/simd/utf8.h"

namespace zel {
namespace {

bitmask64 zeros_of(const unsigned char *block) {
    return places_of(0, load_block(block));
}

template <bool SingleByte, ascii Kept, instructions Set>
struct from_utf8 {
    const code_table *table;

    static constexpr auto policy = when_full::give_up;
    static constexpr auto set = Set;
    static constexpr std::size_t reads = block_size;
    static constexpr std::size_t writes = block_size + squeeze_slack;

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

    // Stores all codes; gives the bytes that are kept, or none where a character is not decided.
    bitmask64 look_up(unsigned char *looked_up, const block64 &block, const utf8_block &shape,
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

    status block_step(cursors &at) const {
        const block64 block = load_block(at.from);
        const utf8_block shape = utf8_shape<Set>(block);
        if (Kept == ascii::plain_text && has_any(block, are_special_controls)) [[unlikely]]
            return status::declined;
        if (!shape.high) {
            copy_kept<are_not_kept<Kept>, Set>(at, block);
            return status::done;
        }
        if (!is_well_formed(shape)) [[unlikely]]
            return status::declined;
        const std::size_t length = whole_characters(shape, left(at));
        unsigned char looked_up[block_size + 1];
        const bitmask64 kept = look_up(looked_up, block, shape, first_bits(length));
        if (!kept) [[unlikely]]
            return status::declined;
        at.to = squeeze_block<Set>(at.to, looked_up, kept);
        at.from += length;
        return status::done;
    }

    status scalar_step(cursors &at) const {
        const charset_code code = table->codes[take_code_point(at)];
        if (code == 0)
            return status::needs_icu;
        return put_code(at, code) ? status::done : status::full;
    }
};

template <instructions Set>
using to_single_bytes = from_utf8<true, ascii::all, Set>;
template <instructions Set>
using to_double_bytes = from_utf8<false, ascii::all, Set>;
template <instructions Set>
using to_double_bytes_plain = from_utf8<false, ascii::plain_text, Set>;

} // namespace

transcoder transcoder_from_utf8(charset_kind to, bool keeps_ascii) {
    if (to == charset_kind::iso2022jp)
        return transcoder_from_utf8_to_jis();
    if (!keeps_ascii)
        return transcoder_by<to_double_bytes_plain>();
    return to == charset_kind::single_byte ? transcoder_by<to_single_bytes>()
                                           : transcoder_by<to_double_bytes>();
}

} // namespace zel
