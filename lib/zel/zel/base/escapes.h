// Hexadecimal digits, as percent signs, quoted-printable and escaped Unicode have them, and the escape of a
// UTF-16 unit in ASCII text: \uXXXX, upper case; a character above U+FFFF is two of them.

#pragma once

#include <array>
#include <string_view>

namespace zel {

inline constexpr std::string_view hexdigits = "0123456789ABCDEF";

constexpr int not_hex = -1;

constexpr int hex_value(unsigned char character) {
    if (character >= '0' && character <= '9')
        return character - '0';
    const unsigned char letter = character | 0x20;
    return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : not_hex;
}

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
