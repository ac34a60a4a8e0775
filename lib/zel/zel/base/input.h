// A cursor over the caller's bytes. Behind the last byte it gives 0 and does not move, so that a pair that
// the end of the text cuts off takes a 0 for its second byte instead of whatever lies in memory there.
//
// Invariant: at <= end, and nothing at or behind end is read.

#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace zel {

struct input {
    const unsigned char *at;
    const unsigned char *end;
};

constexpr bool has_high_bit(char byte) {
    return (byte & 0x80) != 0;
}

inline bool has_text(const char *text) {
    return text && *text;
}

// The bytes of a text that a NUL ends even before its length is used up.
inline input input_from(const char *buf, std::int32_t len) {
    const auto *start = reinterpret_cast<const unsigned char *>(buf);
    const std::size_t bytes = buf && len > 0 ? strnlen(buf, static_cast<std::size_t>(len)) : 0;
    return {start, start + bytes};
}

inline input input_from(std::string_view text) {
    return input_from(text.data(), static_cast<std::int32_t>(std::min<std::size_t>(text.size(), INT32_MAX)));
}

inline std::size_t left(const input &from) {
    return static_cast<std::size_t>(from.end - from.at);
}

inline bool ended(const input &from) {
    return from.at == from.end;
}

inline unsigned char peek(const input &from, std::size_t ahead = 0) {
    return ahead < left(from) ? from.at[ahead] : 0;
}

inline unsigned char take(input &from) {
    return ended(from) ? 0 : *from.at++;
}

} // namespace zel
