// What a conversion loses, and where. The library says nothing of it, so the output is searched for what
// stands in it for a character that was lost; only where that is found the input is read once more, character
// by character.
//
// Invariant: what is told is lost. A substitute that the input holds as a character of its own is not.

#pragma once

#include "charset.h"
#include "chunks.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

// The characters of a charset, each asked of the library once.
class repertoire {
public:
    explicit repertoire(const charset &of);

    bool holds(char32_t code) {
        if (answers_[code] == unknown)
            answers_[code] = ask(code);
        return answers_[code] == yes;
    }
    bool holds_ascii() const { return ascii_; }

    // Whether a text in the charset may hold a substitute, or U+FFFD where it has that.
    bool suspects(std::string_view text) const;

    const std::string &name() const { return of_.name; }

private:
    enum answer : unsigned char { unknown, yes, no };
    answer ask(char32_t code) const;

    charset of_;
    std::vector<std::string> substitutes_; // what two different characters become
    std::vector<std::string> suspicious_;
    std::vector<answer> answers_;
    bool ascii_;
};

struct loss {
    std::uint64_t place; // in the file
    std::string reason;
};

struct losses {
    std::uint64_t count = 0;
    std::vector<loss> first; // as many as were wanted
};

// Of a chunk that is converted into the charset of the repertoire.
losses find_losses(const charset &from, const chunk &piece, repertoire &characters, std::size_t wanted);

// Of a chunk between "big5" and "gb2312", where the library puts "??" for a character without a counterpart.
losses find_holes(const chunk &piece, std::string_view converted, const std::string &to_charset,
                  std::size_t wanted);

// Tells of the first losses of a file, and at the end how many more there were.
class loss_report {
public:
    explicit loss_report(const std::string &path) : path_(path) {}

    std::size_t wanted() const;
    void add(const losses &found);
    void close() const;

private:
    std::string path_;
    std::uint64_t count_ = 0;
};

} // namespace tool
