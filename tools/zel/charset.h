// What a charset is like, learned from the library by a few small conversions, so that every name and alias
// that the library takes is known as well as the next.

#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tool {

// What has to be remembered behind a character before the next one can be read or written.
enum class states {
    none,
    mark,    // the order of bytes, by the mark that UTF-16 and UTF-32 begin with
    escapes, // the escape sequence of ISO-2022-JP that is in force
    others
};

struct charset {
    std::string name;
    std::string unmarked; // its name behind a mark: the BE or LE one; else the same
    states kept;
    bool utf8;
    std::size_t unit; // bytes of which all characters are made
    std::string line_feed, blank;
};

charset learn(const std::string &name);

// The charset of a text that begins so: by its mark, if it has one. The name stays, as the mark is still to
// be read.
charset settle(const charset &from, std::string_view beginning);

bool same_name(const std::string &one, const std::string &other);

// Conversion without a word about what is lost; empty for an empty text.
std::string to_utf8(const std::string &charset, std::string_view text);
std::string from_utf8(const std::string &charset, std::string_view text);

} // namespace tool
