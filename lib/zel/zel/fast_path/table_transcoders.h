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

status transcode_from_utf8(const code_table &table, cursors &at);
status transcode_to_utf8(const code_table &table, cursors &at);

// ISO-2022-JP, whose text has states.
status transcode_utf8_to_jis(const code_table &table, cursors &at);
status transcode_jis_to_utf8(const code_table &table, cursors &at);

// Between two charsets of single bytes.
status transcode_bytes(const byte_table &table, cursors &at);

// The bytes of ASCII that stay the same between two charsets; those of plain text all or none.
using ascii_identity = std::bitset<128>;

status transcode_ascii(const ascii_identity &kept, cursors &at);

template <class Kernel>
status transcode_by_kernel(const code_table &table, cursors &at) {
    Kernel each = {&table};
    return transcode(each, at);
}

// The same code, compiled for newer processors. Everything is inlined, so that all of it is.
template <class Kernel>
ZEL_AVX2 [[gnu::flatten]] status transcode_by_avx2(const code_table &table, cursors &at) {
    Kernel each = {&table};
    return transcode(each, at);
}

template <template <instructions> class Kernel>
status transcode_by(const code_table &table, cursors &at) {
    return has_avx2() ? transcode_by_avx2<Kernel<instructions::avx2>>(table, at)
                      : transcode_by_kernel<Kernel<instructions::base>>(table, at);
}

} // namespace zel
