// HTML that no text becomes part of: a text that is taken for html is escaped, and what is not is a literal
// of the program, whose holes have names, as in "<td>{subject}</td>"_html.with({"subject", subject}).

#pragma once

#include "message.h"

#include <zel.hpp>

#include <concepts>

class html {
public:
    html() = default;
    html(const std::convertible_to<std::string_view> auto &text) : bytes_(zel::escape_html(text)) {}
    const std::string &bytes() const { return bytes_; }
    void operator+=(const html &other) { bytes_ += other.bytes_; }

    // Takes the name of a hole, then what fills it, and so on. The others are for words of the language.
    html with(std::initializer_list<html> holes, const values &words = {}) const {
        std::map<std::string, html> fillings;
        for (const html *hole = holes.begin(); hole != holes.end(); hole += 2)
            fillings[hole->bytes_] = hole[1];
        html filled;
        std::size_t start = 0;
        for (std::size_t hole; (hole = bytes_.find('{', start)) != std::string::npos;) {
            const std::string name = bytes_.substr(hole + 1, bytes_.find('}', hole) - hole - 1);
            filled.bytes_.append(bytes_, start, hole - start);
            filled += fillings.count(name) ? fillings.at(name) : html(words.at(name));
            start = hole + name.size() + 2;
        }
        filled.bytes_.append(bytes_, start);
        return filled;
    }

private:
    friend html operator""_html(const char *text, std::size_t size);
    html(const char *literal, std::size_t size) : bytes_(literal, size) {}

    std::string bytes_;
};

inline html operator""_html(const char *text, std::size_t size) {
    return {text, size};
}
