// What a header value is made of, found and not read: encoded words (RFC 2047) and parameters (RFC 2231). The
// time that this takes grows with the value and no faster.

#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tool {

struct encoded_word {
    std::string_view whole, charset;
};

std::vector<encoded_word> words_of(std::string_view value);

struct parameter {
    std::string name;
    std::string parts; // all that the value says of it, as "name*0=...; name*1=..."
};

// Each once. What has no "=" is none.
std::vector<parameter> parameters_of(std::string_view value);

} // namespace tool
