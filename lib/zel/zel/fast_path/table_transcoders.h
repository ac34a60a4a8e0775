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

// Converts a text by the table of its charset.
using transcoder = transcoded (*)(const code_table &table, std::string_view text, buffer to);

// The transcoder for a kind of charset that can have a table, as this processor runs it best. The charset
// keeps all of ASCII, or plain text alone.
transcoder transcoder_from_utf8(charset_kind to, bool keeps_ascii);
transcoder transcoder_to_utf8(charset_kind from, bool keeps_ascii);

// ISO-2022-JP, whose text has states.
transcoder transcoder_from_utf8_to_jis();
transcoder transcoder_from_jis_to_utf8();

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
transcoder transcoder_by() {
    return has_avx2() ? &transcode_by_avx2<Kernel<instructions::avx2>>
                      : &transcode_by_kernel<Kernel<instructions::base>, code_table>;
}

} // namespace zel
