// Two questions about the bytes of a string: are all of them 7-bit, and does each lead byte of a double-byte
// charset have its trail. The repair overwrites what is broken by "?" and never changes a length.

#pragma once

#include <cstddef>
#include <string_view>

namespace zel {

bool is7bit(std::string_view text);
bool is7bitstring(const char *text); // true for a null

// Text in an EUC charset, Shift_JIS or Big5 is repaired in place; text in any other charset stays as it is.
void checkstringvalidity(const char *charset, char *text);
void checkstringvalidity(const char *charset, char *text, std::size_t len);

} // namespace zel
