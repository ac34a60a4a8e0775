// Results of ISO-2022-JP as one text. Each returns to ASCII at its end, also where the next one goes on in
// the same state; and readers take two escape sequences without a character between them for broken text. So
// what closes a result is held back until it is known what follows.

#pragma once

#include <string>
#include <string_view>

namespace tool {

class joined_escapes {
public:
    void write(std::string_view result);
    void close();

private:
    std::string state_; // the sequence in force behind what is written; none: ASCII
};

} // namespace tool
