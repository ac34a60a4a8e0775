// What needs no more than a look at each byte: text between two charsets of single bytes, and text of which
// all is ASCII that both charsets keep.

#include "zel/fast_path/table_transcoders.h"

namespace zel {
namespace {

struct by_byte_table {
    const byte_table *table;

    static constexpr auto policy = when_full::give_up;
    static constexpr auto set = instructions::base;
    static constexpr std::size_t reads = block_size;
    static constexpr std::size_t writes = block_size;

    status block_step(cursors &at) const {
        unsigned char converted[block_size];
        for (std::size_t place = 0; place < block_size; ++place)
            converted[place] = (*table)[at.from[place]];
        const block64 block = load_block(converted);
        if (places_of(0, block)) [[unlikely]]
            return status::declined;
        store_block(at.to, block);
        const std::size_t length = std::min(left(at), block_size);
        at.from += length;
        at.to += length;
        return status::done;
    }

    status scalar_step(cursors &at) const {
        const unsigned char byte = take(at);
        if (byte != 0 && (*table)[byte] == 0)
            return status::needs_icu;
        return put(at, (*table)[byte]) ? status::done : status::full;
    }
};

template <ascii Kept>
struct kept_ascii {
    const ascii_identity *kept;

    static constexpr auto policy = when_full::give_up;
    static constexpr auto set = instructions::base;
    static constexpr std::size_t reads = block_size;
    static constexpr std::size_t writes = block_size;

    status block_step(cursors &at) const {
        const block64 block = load_block(at.from);
        if (has_any(block, are_not_kept<Kept>))
            return status::declined;
        copy_kept<are_not_kept<Kept>, instructions::base>(at, block);
        return status::done;
    }

    status scalar_step(cursors &at) const {
        const unsigned char byte = take(at);
        if (byte >= kept->size() || !(*kept)[byte])
            return status::needs_icu;
        return put(at, byte) ? status::done : status::full;
    }
};

} // namespace

transcoded transcode_bytes(const byte_table &table, std::string_view text, buffer to) {
    return transcode_by_kernel<by_byte_table>(table, text, to);
}

transcoded transcode_ascii(const ascii_identity &kept, std::string_view text, buffer to) {
    return kept.all() ? transcode_by_kernel<kept_ascii<ascii::all>>(kept, text, to)
                      : transcode_by_kernel<kept_ascii<ascii::plain_text>>(kept, text, to);
}

} // namespace zel
