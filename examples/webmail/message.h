// A message: what a reader sees of it, and how it is written. GMime finds headers and parts and undoes their
// transfer encodings; zel.hpp reads and writes what they say. All texts are in UTF-8.

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
    bool is_file = false;            // not all of it is in the text
};

struct message {
    summary head;
    values headers;          // by their names; ids are as they were sent, addresses as a form takes them back
    std::string receiver;    // the first of To
    std::vector<part> parts; // the first thousand
};

message read_message(const std::string &bytes);

struct mailbox {
    std::string name, place; // "a@b.org" is a place, which is in ASCII
};

// The mailboxes of a header of addresses in UTF-8, at least one, if without a place. The encoded words in
// their names are not read yet: what they stand for may look like an address, and is none.
std::vector<mailbox> mailboxes(const std::string &text);

// Writes a message in the charset of the language, whatever its text is: from, to, subject, text, and the ids
// of the message that it answers and of those before it, if there are any. The file needs no text. Throws
// std::invalid_argument where an address takes no mail.
std::string write_message(const std::string &language, values typed, const part &file,
                          const std::string &type);

std::string replaced(std::string_view text, std::string_view old, std::string_view by);
// At most so many bytes, and no part of a character.
std::string beginning(const std::string &text, std::size_t limit);
// Blanks for controls, none at the ends.
std::string on_one_line(std::string text);

// Digits that nobody guesses.
std::string secret();
