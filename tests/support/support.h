// What all tests share: a library that is started once a process, blocks of an exact size, a walk over all
// sizes of a buffer, and functions that are called twice, for the size and for the text.
//
// A block ends where its last byte ends and has no slack behind it, so the address sanitizer sees the first
// byte that is read or written too far. Its bytes are filled in, so a test also sees which of them the
// library left alone. That of an empty buffer has one byte in front of its data, because the allocator of the
// sanitizer gives a request for nothing a byte that may be written.

#pragma once

#include "zel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

inline constexpr char canary = '\xA5';

// Without a bundle the local charset is iso-8859-1.
inline void start_library(const char *bundle_root = "/nowhere", ZELConfig config = {}) {
    config.bundles_path = bundle_root;
    ASSERT_EQ(ZEL_Initialize("/nowhere", &config), 0);
    ASSERT_EQ(gf_ZELStatus, ZEL_STATUS_INITIALIZED);
}

class exact_buffer {
public:
    explicit exact_buffer(std::size_t size) // full of canaries
        : size_(size), block_(new char[size ? size : 1]), data_(block_.get() + (size ? 0 : 1)) {
        std::fill_n(block_.get(), size ? size : 1, canary);
    }
    explicit exact_buffer(std::string_view bytes) : exact_buffer(bytes.size()) {
        std::copy(bytes.begin(), bytes.end(), data_);
    }

    char *data() const { return data_; }
    std::size_t size() const { return size_; }
    std::int32_t length() const { return static_cast<std::int32_t>(size_); }
    std::string_view bytes() const { return {data_, size_}; }
    bool untouched() const { return std::count(data_, data_ + size_, canary) == length(); }
    std::string text() const { // up to the terminator, whose absence fails the test
        EXPECT_NE(bytes().find('\0'), std::string_view::npos) << "no terminator in " << size_ << " bytes";
        return std::string(bytes().substr(0, bytes().find('\0')));
    }

private:
    std::size_t size_;
    std::unique_ptr<char[]> block_;
    char *data_;
};

// A copy that ends at its terminator.
inline exact_buffer exact_string(std::string_view text) {
    return exact_buffer(std::string(text) + '\0');
}

// What the library handed out: takes the text and releases the memory. Null gives "(null)".
inline std::string taken(char *text) {
    const std::unique_ptr<char, decltype(&ZEL_Free)> owner(text, ZEL_Free);
    return text ? text : "(null)";
}

inline std::string repeated(std::string_view text, std::size_t times) {
    std::string whole;
    while (times--)
        whole += text;
    return whole;
}

// Calls a test with a fresh buffer of each size from 0 to one more than what the whole result needs.
template <class Test>
void for_every_size(std::int32_t need, Test test) {
    for (std::int32_t size = 0; size <= need + 1 && !testing::Test::HasFailure(); ++size) {
        SCOPED_TRACE("to_size " + std::to_string(size));
        const exact_buffer to(static_cast<std::size_t>(size));
        test(to);
    }
}

// Calls for the size, then with a block of that size and of what the function leaves to its caller.
template <class Call>
std::string in_two_calls(Call call, std::int32_t left_to_caller = 0) {
    const exact_buffer to(static_cast<std::size_t>(call(nullptr, -1) + left_to_caller));
    const std::int32_t length = call(to.data(), to.length());
    EXPECT_EQ(to.text().size(), static_cast<std::size_t>(length));
    return to.text();
}

// Whether a text may stop between the two parts.
using unit_rule = bool (*)(const std::string &written, const std::string &rest);

inline bool is_any_end(const std::string &, const std::string &) {
    return true;
}

inline bool is_character_end(const std::string &, const std::string &rest) {
    return (rest.front() & 0xC0) != 0x80;
}

// Behind a triple, a line break or anything else.
template <char mark>
bool is_triple_end(const std::string &written, const std::string &) {
    const std::size_t last = written.rfind(mark);
    return !written.ends_with('\r') && (last == std::string::npos || last + 3 <= written.size());
}

// The text is whole in the size that is asked for. Whatever the size, a beginning of it is written, of whole
// units and as many as there is room for.
template <class Call>
void expect_whole_units(Call call, const std::string &whole, unit_rule may_stop, std::size_t longest_unit,
                        std::int32_t left_to_caller = 0) {
    EXPECT_EQ(in_two_calls(call, left_to_caller), whole);
    for_every_size(static_cast<std::int32_t>(whole.size() + 1), [&](const exact_buffer &to) {
        const std::int32_t length = call(to.data(), to.length());
        const std::string text = to.size() ? to.text() : "";
        ASSERT_EQ(text.size(), static_cast<std::size_t>(length));
        ASSERT_EQ(text, whole.substr(0, text.size()));
        if (text.size() == whole.size())
            return;
        EXPECT_TRUE(may_stop(text, whole.substr(text.size()))) << text;
        EXPECT_GE(text.size() + longest_unit, to.size());
    });
}
