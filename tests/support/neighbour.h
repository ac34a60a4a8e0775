// The system's iconv, which knows the charsets of this library too, as a reference to hold results against.

#pragma once

#include <gtest/gtest.h>

#include <iconv.h>

#include <memory>
#include <string>

class neighbour {
public:
    neighbour(const char *from_charset, const char *to_charset)
        : cd_(iconv_open(to_charset, from_charset), &iconv_close) {
        EXPECT_NE(cd_.get(), reinterpret_cast<iconv_t>(-1)) << from_charset << " to " << to_charset;
    }

    // Empty where the text is not valid or has no counterpart.
    std::string operator()(std::string text) const {
        char to[1024];
        char *from_at = text.data(), *to_at = to;
        std::size_t from_left = text.size(), to_left = sizeof to;
        iconv(cd_.get(), nullptr, nullptr, nullptr, nullptr);
        const bool is_whole = iconv(cd_.get(), &from_at, &from_left, &to_at, &to_left) == 0 &&
                              iconv(cd_.get(), nullptr, nullptr, &to_at, &to_left) == 0;
        return is_whole ? std::string(to, to_at) : "";
    }

private:
    std::unique_ptr<void, decltype(&iconv_close)> cd_;
};
