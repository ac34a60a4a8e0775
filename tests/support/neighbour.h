// The system's iconv, which knows the charsets of this library too, as a reference to hold results against.

#pragma once

#include <gtest/gtest.h>

#include <iconv.h>

#include <string>

class neighbour {
public:
    neighbour(const char *from_charset, const char *to_charset) : cd_(iconv_open(to_charset, from_charset)) {
        if (cd_ == reinterpret_cast<iconv_t>(-1))
            ADD_FAILURE() << "iconv has no road from " << from_charset << " to " << to_charset;
    }
    neighbour(const neighbour &) = delete;
    neighbour &operator=(const neighbour &) = delete;
    ~neighbour() { iconv_close(cd_); }

    // Empty where the text is not valid or has no counterpart.
    std::string operator()(std::string text) const {
        char to[1024];
        char *from_at = text.data(), *to_at = to;
        std::size_t from_left = text.size(), to_left = sizeof to;
        iconv(cd_, nullptr, nullptr, nullptr, nullptr);
        if (iconv(cd_, &from_at, &from_left, &to_at, &to_left) != 0 ||
            iconv(cd_, nullptr, nullptr, &to_at, &to_left) != 0)
            return {};
        return std::string(to, to_at);
    }

private:
    iconv_t cd_;
};
