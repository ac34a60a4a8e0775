// UTF-8 to charsets of one or two bytes a character. A block goes through two stages, neither of which
// branches on the order of its characters, so that its cost goes by its bytes and hardly by their order:
//
//     text            a   [e3 81 82]   b   [c3 a9]
//     looked up       a   [82 a0  .]   b   [85 ..]       each code is stored over the character it replaces
//     squeezed        a    82 a0       b    85           bytes that no code needs are left out
//
// Invariant: a block with a character that is not decided goes to the scalar steps as it stands.

#include "zel/fast_path/characters.h"
#include "zel/fast_path/code_look_up.h"
#include "zel/fast_path/table_transcoders.h"

#include "zel/simd/squeeze.h"

namespace zel {
namespace {

template <bool SingleByte, ascii Kept, instructions Set>
struct from_utf8 {
    const code_table *table;

    static constexpr auto policy = when_full::give_up;
    static constexpr auto set = Set;
    static constexpr std::size_t reads = block_size;
    static constexpr std::size_t writes = block_size + squeeze_slack;

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
        unsigned char looked_up[block_size];
        const bitmask64 kept =
            code_look_up<SingleByte, Set>{table}.store_all(looked_up, block, shape, first_bits(length));
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
