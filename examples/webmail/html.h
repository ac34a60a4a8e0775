// HTML that no text becomes part of: a text that is taken for html is escaped, and markup is a literal of the
// program, whose holes have names, as in "<td>{subject}</td>"_html.with({{"subject", subject}}).

#pragma once

#include "server.h"

#include <zel.hpp>

#include <concepts>

class html {
public:
    html() = default;
    html(const std::convertible_to<std::string_view> auto &text) { add_escaped(text); }
    const std::string &bytes() const { return bytes_; }
    html &operator+=(const html &other) {
        bytes_ += other.bytes_;
        return *this;
    }

private:
    friend class markup;

    // For between tags and in quoted attributes. Controls, by which a charset could change its state, become
    // U+FFFD.
    void add_escaped(std::string_view text) {
        constexpr std::string_view marks = "&<>\"'", blanks = "\t\n\r";
        constexpr const char *names[] = {"&amp;", "&lt;", "&gt;", "&quot;", "&#39;"};
        const std::string utf8 = zel::read_body("utf-8", text);
        for (std::size_t at = 0; at < utf8.size(); ++at) {
            const auto byte = static_cast<unsigned char>(utf8[at]);
            const bool is_c1 = byte == 0xC2 && static_cast<unsigned char>(utf8[at + 1]) < 0xA0;
            const std::size_t mark = marks.find(utf8[at]);
            if (mark != std::string_view::npos)
                bytes_ += names[mark];
            else if (is_c1 || byte == 0x7F || (byte < ' ' && blanks.find(utf8[at]) == std::string_view::npos))
                bytes_ += "\uFFFD";
            else
                bytes_ += utf8[at];
            at += is_c1 ? 1 : 0;
        }
    }

    std::string bytes_;
};

class markup {
public:
    // A hole that is not among these is for a word of the language.
    html with(std::initializer_list<std::pair<const std::string, html>> holes,
              const values &words = {}) const {
        const std::map<std::string, html> fillings = holes;
        html page;
        std::string_view rest = text_;
        for (std::size_t hole; (hole = rest.find('{')) != std::string_view::npos;) {
            const std::string name(rest.substr(hole + 1, rest.find('}') - hole - 1));
            page.bytes_ += rest.substr(0, hole);
            page += fillings.count(name) ? fillings.at(name) : html(words.at(name));
            rest.remove_prefix(hole + name.size() + 2);
        }
        page.bytes_ += rest;
        return page;
    }

private:
    friend constexpr markup operator""_html(const char *text, std::size_t size);
    constexpr explicit markup(std::string_view text) : text_(text) {}

    std::string_view text_;
};

constexpr markup operator""_html(const char *text, std::size_t size) {
    return markup({text, size});
}
