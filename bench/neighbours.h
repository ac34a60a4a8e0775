// The other libraries that do the same work, each brought into one shape.
//
// Invariant: what can be kept open between two texts is opened before the first.

#pragma once

#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace bench {

struct release_string {
    void operator()(char *text) const { std::free(text); }
};

// What a result is put into: a buffer that is always large enough, or a string of the callee's.
struct scratch {
    explicit scratch(std::size_t longest) : bytes(10 * longest + 1024), units(longest + 1, u'\0') {}

    std::vector<char> bytes;
    std::u16string units;
    std::string copy; // of a text that is written to
    std::unique_ptr<char, release_string> string;
};

struct result {
    const char *at;
    std::ptrdiff_t length; // -1: up to the NUL
};

inline std::string text_of(const result &from) {
    return from.length < 0 ? from.at : std::string(from.at, from.at + from.length);
}

using work = std::function<result(std::string &text, scratch &to)>;

struct subject {
    std::string name;
    work run;
    int threads = 1;
};

void start_neighbours();

// Of ICU, and of iconv if it has both charsets.
std::vector<subject> converting_neighbours(const std::string &from_charset, const std::string &to_charset);
// The same, with a string of its own for each result.
std::vector<subject> string_neighbours(const std::string &from_charset, const std::string &to_charset);

work icu_decoding(const std::string &charset); // gives the text itself if it is valid
work icu_comparison(const std::string &locale, const std::string &charset); // of the texts around a NUL

std::vector<subject> base64_neighbours();
work gmime_quoted_printable();
work gmime_header_encoding(const std::string &charset);
work gmime_header_decoding();
work gmime_7bit_test();

std::string decode_quoted_printable(const std::string &text);

inline result answer(int value, scratch &to) {
    to.bytes[0] = static_cast<char>('1' + value);
    return {to.bytes.data(), 1};
}

} // namespace bench
