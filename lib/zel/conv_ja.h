// The three encodings of Japanese text: EUC-JP, Shift_JIS, and ISO-2022-JP with the half-width kana forms
// that mailers add to it. The walks on cursors, for callers inside the library; on a counting output they
// tell the real need.

#pragma once

#include "zel/base/input.h"
#include "zel/base/output.h"

namespace zel {

// To ISO-2022-JP: half-width katakana become full-width, and a run that the text leaves open is closed.
// Where the output is full the walk just stops, maybe inside a run and for EUC-JP inside a pair.
void convert_eucjp_to_jis(input from, output &to);
void convert_sjis_to_jis(input from, output &to);

// From ISO-2022-JP: half-width katakana stay half-width, and a control character ends any run.
// Raw 8-bit bytes outside the runs pass or become "?", as the start-up record says.
void convert_jis_to_eucjp(input from, output &to);
void convert_jis_to_sjis(input from, output &to);

} // namespace zel
