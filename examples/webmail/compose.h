// A message as it is written in a form, and on the wire: in the charset of its language, whatever its text
// is.

#pragma once

#include <string>

struct draft {
    std::string language, from, to, subject, text;
    std::string file_name, file_type, file; // an attachment, if it has a name
    std::string answer;                     // the letter that is answered, by its name in the Maildir
    std::string answered, references;       // its id, and those of the messages before it
};

// Gives a whole message (RFC 5322). Throws std::invalid_argument where an address takes no mail.
std::string written(const draft &draft);

// 32 digits that nobody guesses.
std::string secret();
