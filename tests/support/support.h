// What all tests share: a library that is started once a process, blocks of an exact size, and a walk over
// all sizes of a buffer.
//
// A block ends where its last byte ends and has no slack behind it, so the address sanitizer sees the first
// byte that is read or written too far. Its bytes are filled in, so a test also sees which of them the
// library left alone.

#pragma once

#include "zel.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

inline constexpr unsigned char canary = 0xA5;

void start_library(); // without a bundle, so the local charset is iso-8859-1
void start_library(const char *bundle_root, ZELConfig config = {});

class exact_buffer {
public:
    explicit exact_buffer(std::size_t size); // full of canaries
    explicit exact_buffer(std::string_view bytes);

    char *data() const { return data_; }
    std::size_t size() const { return size_; }
    std::int32_t length() const { return static_cast<std::int32_t>(size_); }

    std::string_view bytes() const { return {data_, size_}; }
    bool untouched() const;   // every byte is still the canary
    std::string text() const; // up to the terminator, whose absence fails the test

private:
    std::size_t size_;
    std::unique_ptr<char[]> block_;
    char *data_;
};

// A copy that ends at its terminator.
exact_buffer exact_string(std::string_view text);

// What the library handed out: takes the text and releases the memory. Null gives "(null)".
std::string taken(char *text);

// Calls a test with a fresh buffer of each size from 0 to one more than what the whole result needs.
template <class Test>
void for_every_size(std::int32_t need, Test test) {
    for (std::int32_t size = 0; size <= need + 1 && !testing::Test::HasFailure(); ++size) {
        SCOPED_TRACE("to_size " + std::to_string(size));
        const exact_buffer to(static_cast<std::size_t>(size));
        test(to);
    }
}
