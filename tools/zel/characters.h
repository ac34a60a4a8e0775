// UTF-8, a character at a time. A sequence that is broken ends where Unicode's substitution of maximal
// subparts ends it (Unicode 15, section 3.9), so that each is one U+FFFD of ICU's.

#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace tool {

// What ICU reads in place of a broken sequence: the control where a charset has one for single bytes.
constexpr char32_t replacement = 0xFFFD;
constexpr char32_t substitute = 0x1A;

constexpr char32_t broken = 0xFFFFFFFF;

struct character {
    char32_t code; // or broken
    std::size_t length;
};

namespace detail {

// The range of the second byte keeps out what is overlong, a surrogate or above U+10FFFF.
struct sequence {
    std::size_t length; // 0: no sequence begins so
    unsigned char low, high;
};

constexpr sequence sequence_of(unsigned char first) {
    if (first < 0x80)
        return {1, 0, 0};
    if (first < 0xC2 || first > 0xF4)
        return {0, 0, 0};
    if (first < 0xE0)
        return {2, 0x80, 0xBF};
    if (first < 0xF0)
        return {3, static_cast<unsigned char>(first == 0xE0 ? 0xA0 : 0x80),
                static_cast<unsigned char>(first == 0xED ? 0x9F : 0xBF)};
    return {4, static_cast<unsigned char>(first == 0xF0 ? 0x90 : 0x80),
            static_cast<unsigned char>(first == 0xF4 ? 0x8F : 0xBF)};
}

} // namespace detail

// 0 for a byte that begins none.
constexpr std::size_t sequence_length(char first) {
    return detail::sequence_of(static_cast<unsigned char>(first)).length;
}

namespace detail {

inline character first_by_rule(std::string_view text) {
    const auto byte = [text](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const sequence known = sequence_of(byte(0));
    if (known.length < 2)
        return {known.length ? byte(0) : broken, 1};
    char32_t code = byte(0) & (0x7FU >> known.length);
    for (std::size_t at = 1; at < known.length; ++at) {
        const unsigned char low = at == 1 ? known.low : 0x80, high = at == 1 ? known.high : 0xBF;
        if (at == text.size() || byte(at) < low || byte(at) > high)
            return {broken, at};
        code = code << 6 | (byte(at) & 0x3FU);
    }
    return {code, known.length};
}

} // namespace detail

// The first character of a text that is not empty. East Asian text is nearly all of three bytes.
inline character first_character(std::string_view text) {
    const auto byte = [text](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    if (text.size() >= 3 && (byte(0) & 0xF0) == 0xE0 && (byte(1) & 0xC0) == 0x80 &&
        (byte(2) & 0xC0) == 0x80) {
        const char32_t code = (byte(0) & 0x0FU) << 12 | (byte(1) & 0x3FU) << 6 | (byte(2) & 0x3FU);
        if (code >= 0x800 && (code < 0xD800 || code > 0xDFFF))
            return {code, 3};
    }
    return detail::first_by_rule(text);
}

// ASCII characters at the beginning of a text.
inline std::size_t ascii_run(std::string_view text) {
    std::size_t length = 0;
    for (std::uint64_t eight; text.size() - length >= sizeof eight; length += sizeof eight) {
        std::memcpy(&eight, text.data() + length, sizeof eight);
        if (eight & 0x8080808080808080U)
            break;
    }
    while (length < text.size() && !(text[length] & 0x80))
        ++length;
    return length;
}

inline std::string utf8(char32_t code) {
    const auto tail = [code](int shift) { return static_cast<char>(0x80 | (code >> shift & 0x3F)); };
    if (code < 0x80)
        return {static_cast<char>(code)};
    if (code < 0x800)
        return {static_cast<char>(0xC0 | code >> 6), tail(0)};
    if (code < 0x10000)
        return {static_cast<char>(0xE0 | code >> 12), tail(6), tail(0)};
    return {static_cast<char>(0xF0 | code >> 18), tail(12), tail(6), tail(0)};
}

} // namespace tool
