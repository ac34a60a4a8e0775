// The escape of a UTF-16 unit in ASCII text: \uXXXX, upper case; a character above U+FFFF is two of them.

#pragma once

#include "zel/base/transfer_encoding.h"

#include <array>

namespace zel {

using unicode_escape = std::array<char, 6>;

inline unicode_escape escape_of(char16_t unit) {
    return {'\\',
            'u',
            hexdigits[unit >> 12],
            hexdigits[unit >> 8 & 0xF],
            hexdigits[unit >> 4 & 0xF],
            hexdigits[unit & 0xF]};
}

} // namespace zel
