// Chinese text: HZ, the 7-bit mail form of GB 2312, and the map of characters between Big5 and GB 2312. The
// walks on cursors, for callers inside the library.

#pragma once

#include "zel/base/input.h"
#include "zel/base/output.h"

namespace zel {

// HZ to GB 2312; stops where the output is full.
// Raw 8-bit bytes outside the GB runs pass or become "?", as the start-up record says.
void convert_hz_to_gb(input from, output &to);

// Traditional to simplified characters and back, one for one, a pair for a pair and a byte for a byte.
// A character without counterpart becomes "??"; where the output is full the walk stops.
void convert_big5_to_gb(input from, output &to);
void convert_gb_to_big5(input from, output &to);

} // namespace zel
