// The direct converters, for callers inside the library. All of them stop where the output is full; on an
// output that only counts they tell the real need.

#pragma once

#include "zel/direct/direct.h"

namespace zel {

// To ISO-2022-JP: half-width katakana become full-width, and a run that the text leaves open is closed.
// A full output may end inside a run, and for EUC-JP inside a double-byte character.
conversion convert_eucjp_to_jis;
conversion convert_sjis_to_jis;

// From ISO-2022-JP: half-width katakana stay half-width, and a control character ends any run.
// Raw 8-bit bytes outside the runs pass or become "?", as the start-up record says; so they do in the next
// two.
conversion convert_jis_to_eucjp;
conversion convert_jis_to_sjis;

// ISO-2022-KR to EUC-KR.
conversion convert_iso2022kr_to_euckr;

// HZ to GB 2312.
conversion convert_hz_to_gb;

// Traditional to simplified characters and back, one for one, two bytes for two and one for one. A character
// without counterpart becomes "??".
conversion convert_big5_to_gb;
conversion convert_gb_to_big5;

} // namespace zel
