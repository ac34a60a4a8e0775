// The conversions by table, without ICU. What a table does not decide gives status::needs_icu, and the text
// goes to ICU from its start.
//
// Invariant: a result is ICU's to the byte, or it is not given.

#pragma once

#include "zel/fast_path/code_table.h"
#include "zel/simd/squeeze.h"
#include "zel/transcode/transcode.h"

#include <bitset>

namespace zel {

using buffer = std::span<unsigned char>;

transcoded transcode_from_utf8(const code_table &table, std::string_view text, buffer to);
transcoded transcode_to_utf8(const code_table &table, std::string_view text, buffer to);

// ISO-2022-JP, whose text has states.
transcoded transcode_utf8_to_jis(const code_table &table, std::string_view text, buffer to);
transcoded transcode_jis_to_utf8(const code_table &table, std::string_view text, buffer to);

// Between two charsets of single bytes.
transcoded transcode_bytes(const byte_table &table, std::string_view text, buffer to);

// The bytes of ASCII that stay the same between two charsets; those of plain text all or none.
using ascii_identity = std::bitset<128>;

transcoded transcode_ascii(const ascii_identity &kept, std::string_view text, buffer to);

// g++ inlines the block steps, so that all that a text needs stays in registers; clang does so in part.
template <class Kernel, class Table>
[[gnu::flatten]] transcoded transcode_by_kernel(const Table &table, std::string_view text, buffer to) {
    Kernel each = {&table};
    return transcode_text(each, text, to);
}

// The same code, compiled for newer processors.
template <class Kernel>
ZEL_AVX2 [[gnu::flatten]] transcoded transcode_by_avx2(const code_table &table, std::string_view text,
                                                       buffer to) {
    Kernel each = {&table};
    return transcode_text(each, text, to);
}

template <template <instructions> class Kernel>
transcoded transcode_by(const code_table &table, std::string_view text, buffer to) {
    return has_avx2() ? transcode_by_avx2<Kernel<instructions::avx2>>(table, text, to)
                      : transcode_by_kernel<Kernel<instructions::base>>(table, text, to);
}

} // namespace zel
