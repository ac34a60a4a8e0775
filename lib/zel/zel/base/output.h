// A cursor over the caller's buffer. All bytes that the library itself puts into such a buffer pass here, a
// unit at a time: a unit is written whole or not at all.
//
// Invariant: as long as the buffer has a byte at all, one is left behind the text for the terminator.

#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string_view>

namespace zel {

struct output {
    char *start;        // null: the output only counts
    std::size_t length; // written or counted so far
    std::size_t size;   // of the buffer, terminator included
};

// Whether steps that write ahead of themselves could spoil a text that is not yet read.
inline bool overlap(std::string_view text, std::string_view room) {
    const std::less<> before;
    return before(text.data(), room.data() + room.size()) && before(room.data(), text.data() + text.size());
}

inline output output_to(char *buf, std::int32_t size) {
    return {buf, 0, size > 0 ? static_cast<std::size_t>(size) : 0};
}

// Takes everything and keeps the length alone, so that the code that writes a text also tells its real need.
inline output counting_output() {
    return {nullptr, 0, SIZE_MAX};
}

inline std::int32_t saturate(std::uint64_t size) {
    return static_cast<std::int32_t>(std::min<std::uint64_t>(size, INT32_MAX));
}

inline bool fits(const output &to, std::size_t bytes) {
    return bytes < to.size - to.length;
}

// The unit may stand in the buffer that it is put into, as a host may have its text there.
inline bool put(output &to, std::string_view unit) {
    if (!fits(to, unit.size()))
        return false;
    if (to.start && !unit.empty())
        std::memmove(to.start + to.length, unit.data(), unit.size());
    to.length += unit.size();
    return true;
}

inline bool put(output &to, unsigned char byte) {
    if (!fits(to, 1))
        return false;
    if (to.start)
        to.start[to.length] = static_cast<char>(byte);
    ++to.length;
    return true;
}

// What fits in front of the terminator.
inline std::size_t room_left(const output &to) {
    return to.size > to.length ? to.size - to.length - 1 : 0;
}

// As much of a text as fits, for copies that may be cut at any byte.
inline bool put_some(output &to, std::string_view text) {
    const std::size_t room = room_left(to);
    return put(to, text.substr(0, std::min(text.size(), room))) && text.size() <= room;
}

// Terminates the text and gives its length.
inline std::int32_t finish(output &to) {
    if (to.start && to.length < to.size)
        to.start[to.length] = '\0';
    return saturate(to.length);
}

// The same for what goes out as a string, which a zero byte within ends.
inline std::int32_t finish_string(output &to) {
    finish(to);
    if (to.start)
        to.length = strnlen(to.start, to.length);
    return saturate(to.length);
}

// The size that zel.h promises, or what the code that writes the text really needs where that is more.
template <class Put>
std::int32_t size_or_need(std::uint64_t promised, Put put) {
    output counted = counting_output();
    put(counted);
    return saturate(std::max<std::uint64_t>(promised, counted.length + 1));
}

} // namespace zel
