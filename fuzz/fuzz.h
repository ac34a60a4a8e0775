// What all fuzz targets share: an input that is taken apart from its front, blocks of an exact size, and the
// rules of functions that are called twice.
//
// The first byte of an input sets the library's switches, the next ones choose from lists ("A" is the first
// of each), and the rest is text. So inputs can be written by hand, and a target has no memory from one input
// to the next but what the library keeps.

#pragma once

#include "zel.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

inline void require(bool holds, const char *rule) {
    if (holds)
        return;
    std::fprintf(stderr, "broken rule: %s\n", rule);
    std::abort();
}

// The sanitizers see the first byte that is read or written too far. For an empty block the data lies behind
// the one byte that they would let pass.
class block {
public:
    explicit block(std::size_t size)
        : size_(size), memory_(new char[size ? size : 1]), data_(memory_.get() + (size ? 0 : 1)) {}
    explicit block(std::string_view bytes) : block(bytes.size()) {
        std::copy(bytes.begin(), bytes.end(), data_);
    }
    char *data() const { return data_; }
    std::int32_t size() const { return static_cast<std::int32_t>(size_); }

private:
    std::size_t size_;
    std::unique_ptr<char[]> memory_;
    char *data_;
};

inline block terminated(std::string_view text) {
    return block(std::string(text) + '\0');
}

// Of texts that a NUL may end; the first ones have no states.
inline constexpr std::size_t stateless = 14;
inline constexpr const char *charsets[] = {
    "UTF-8",        "iso-8859-1", "iso-8859-2",  "iso-8859-5", "iso-8859-15",
    "windows-1252", "us-ascii",   "tis-620",     "Shift_JIS",  "euc-jp",
    "euc-kr",       "gb2312",     "big5",        "latin1",     "iso-2022-jp",
    "iso-2022-kr",  "hz-gb-2312", "ISO-2022-CN", "utf-7",      "IMAP-MODIFIED-UTF-7",
    "not-a-charset"};

inline constexpr const char *languages[] = {
    "en", "fr", "de", "pl",    "lv",    "ru",    "el",    "tr",   "he",        "yi",    "th",
    "ja", "ko", "zh", "zh-CN", "zh_CN", "zh-TW", "zh_TW", "ja-x", "i-default", "en-US", ""};

class input {
public:
    input(const std::uint8_t *data, std::size_t size) : left_(reinterpret_cast<const char *>(data), size) {
        static const ZELConfig config = {.bundles_path = "/nowhere"};
        static const std::int32_t started = ZEL_Initialize("/nowhere", &config);
        const unsigned switches = byte();
        g_zelconf.pass_8bit = static_cast<std::int32_t>(switches & 1);
        gf_ZELStatus = started + ((switches & 6) == 6 ? ZEL_STATUS_PASSTHROUGH : ZEL_STATUS_INITIALIZED);
    }
    unsigned byte() {
        if (left_.empty())
            return 0;
        const char first = left_.front();
        left_.remove_prefix(1);
        return static_cast<unsigned char>(first);
    }
    std::size_t number() { return byte() + 256 * byte(); }
    template <std::size_t count>
    const char *one_of(const char *const (&list)[count]) {
        return list[(byte() + 256 * count - 'A') % count];
    }
    const char *charset() { return one_of(charsets); }
    const char *language() { return one_of(languages); }
    std::string bytes() { return std::string(left_); }
    std::string text() { return std::string(left_.substr(0, left_.find('\0'))); }
    std::string line() { // the text up to a line end, which is taken too
        const std::string_view found = left_.substr(0, left_.find_first_of(std::string_view("\n\0", 2)));
        left_.remove_prefix(std::min(found.size() + 1, left_.size()));
        return std::string(found);
    }

private:
    std::string_view left_;
};

// What is written into a block of that size, terminated whenever the block has a byte.
template <class Call>
std::string written(Call call, std::size_t size) {
    const block to(size);
    const std::int32_t length = call(to.data(), to.size());
    require(length >= 0 && (size == 0 || length < to.size()),
            "the length is that of a text inside the buffer");
    require(size == 0 || to.data()[length] == '\0', "the result is terminated at its length");
    return std::string(to.data(), static_cast<std::size_t>(length));
}

inline bool has_states(std::string_view charset) {
    return std::find(charsets + stateless, std::end(charsets), charset) != std::end(charsets);
}

// The size that is asked for takes the whole result.
template <class Call>
std::string whole(Call call, std::int32_t left_to_caller = 0) {
    const auto need = static_cast<std::size_t>(call(nullptr, -1) + left_to_caller);
    const std::string result = written(call, need);
    require(result == written(call, 4 * need + 64), "the size that is asked for is enough");
    return result;
}

// A smaller one takes the beginning of it. Only a charset with states may end otherwise where its text is
// cut.
template <class Call>
std::string whole_and_cut(Call call, std::size_t cut, std::string_view charset) {
    const std::string result = whole(call), some = written(call, cut % (result.size() + 1));
    require(has_states(charset) || result.starts_with(some), "a short result is a beginning of the whole");
    return result;
}

// Takes a string that the library handed over.
inline std::string taken(char *text) {
    require(text != nullptr, "there is a string");
    const std::unique_ptr<char, decltype(&ZEL_Free)> owner(text, ZEL_Free);
    return text;
}

// Undoes quoted-printable, and holds its lines to their length.
inline std::string unquoted(std::string_view body) {
    std::string text;
    while (!body.empty()) {
        const std::size_t end = std::min(body.find("\r\n"), body.size());
        require(end <= 76, "no line of quoted-printable is longer than 76 characters");
        const std::string line(body.substr(0, end));
        for (std::size_t at = 0; at < end; ++at)
            if (line[at] != '=')
                text += line[at];
            else if (at + 1 < end)
                text +=
                    static_cast<char>(std::stoi(line.substr(std::exchange(at, at + 2) + 1, 2), nullptr, 16));
        if (end < body.size() && !line.ends_with('='))
            text += "\r\n";
        body.remove_prefix(std::min(end + 2, body.size()));
    }
    return text;
}

// With every CR, LF and CR LF as CR LF.
inline std::string with_wire_lines(std::string_view text) {
    std::string lines;
    for (std::size_t at = 0; at < text.size(); ++at)
        if (text[at] == '\r' || text[at] == '\n')
            lines += "\r\n", at += text.substr(at).starts_with("\r\n");
        else
            lines += text[at];
    return lines;
}
