// Korean text in its 7-bit mail form. The walk on cursors, for callers inside the library.

#pragma once

#include "zel/base/input.h"
#include "zel/base/output.h"

namespace zel {

// ISO-2022-KR to EUC-KR; stops where the output is full.
// Raw 8-bit bytes outside the Korean runs pass or become "?", as the start-up record says.
void convert_iso2022kr_to_euckr(input from, output &to);

} // namespace zel
