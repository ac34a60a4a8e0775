// The escape sequences of ISO-2022-JP (RFC 1468) that its writers use.

#pragma once

#include <string_view>

namespace zel {

inline constexpr std::string_view enter_kanji = "\x1B$B"; // JIS X 0208-1983
inline constexpr std::string_view leave_kanji = "\x1B(B"; // ASCII

} // namespace zel
