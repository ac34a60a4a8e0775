// What a reader sees of a message. GMime finds its headers and parts and undoes their transfer encodings,
// zel.hpp reads what they say. All texts are UTF-8, and those of headers have no line breaks or other
// controls.

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

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
    std::string from, to, cc, date; // as they were sent
    std::string answer_to, id, references;
    std::vector<part> parts;
};

message read_message(const std::string &bytes);

// Blanks for controls, none at the ends.
std::string on_one_line(std::string text);
