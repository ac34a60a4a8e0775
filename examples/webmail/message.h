// A message: what a reader sees of it, and how it is written. GMime finds headers and parts and undoes their
// transfer encodings; zel.hpp reads and writes what they say. All texts are in UTF-8, those of headers on one
// line.

#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

using values = std::map<std::string, std::string>;

struct summary {
    std::string sender, subject; // a name, or else an address
    std::optional<std::int64_t> time;
};

struct part {
    std::string name, bytes;
    std::optional<std::string> text; // of a part that is shown
};

struct message {
    summary head;
    values headers;          // as they were sent, by their names
    std::vector<part> parts; // the first thousand
};

message read_message(const std::string &bytes);

// Writes a message in the charset of the language, whatever its text is: from, to, subject, text, and the ids
// of the message that it answers and of those before it, if there are any. The file needs no text. Throws
// std::invalid_argument where an address takes no mail.
std::string write_message(const std::string &language, values typed, const part &file,
                          const std::string &type);

// Blanks for controls, none at the ends.
std::string on_one_line(std::string text);

// Digits that nobody guesses.
std::string secret();
