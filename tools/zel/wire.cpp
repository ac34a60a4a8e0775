#include "wire.h"

#include <algorithm>
#include <cctype>
#include <map>

namespace tool {
namespace {

std::string small_letters(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char letter) { return std::tolower(letter); });
    return text;
}

// At a ";" that stands in no quotes.
std::size_t end_of_parameter(std::string_view value) {
    bool quoted = false;
    std::size_t end = 0;
    for (; end < value.size() && (quoted || value[end] != ';'); ++end) {
        if (quoted && value[end] == '\\' && end + 1 < value.size())
            ++end;
        else
            quoted ^= value[end] == '"';
    }
    return end;
}

} // namespace

std::vector<encoded_word> words_of(std::string_view value) {
    std::vector<encoded_word> words;
    for (std::size_t at = 0; (at = value.find("=?", at)) != value.npos;) {
        const std::size_t mark = std::min(value.find('?', at + 2), value.size());
        const std::string_view charset = value.substr(at + 2, mark - at - 2);
        at += 2;
        if (charset.empty() || charset.find(' ') != charset.npos || mark + 2 >= value.size() ||
            value[mark + 2] != '?')
            continue;
        const std::size_t end = value.find("?=", mark + 3);
        if (end == value.npos)
            break;
        words.push_back({value.substr(at - 2, end + 4 - at), charset.substr(0, charset.find('*'))});
        at = end + 2;
    }
    return words;
}

std::vector<parameter> parameters_of(std::string_view value) {
    std::vector<parameter> found;
    std::map<std::string, std::size_t> known;
    while (!value.empty()) {
        const std::size_t end = end_of_parameter(value);
        const std::string part(value.substr(0, end));
        value.remove_prefix(std::min(end + 1, value.size()));
        const std::size_t first = std::min(part.find_first_not_of(" \t\r\n"), part.size());
        const std::string name = part.substr(first, part.find_first_of("*= \t", first) - first);
        if (part.find('=') == part.npos)
            continue;
        const auto [at, is_new] = known.emplace(small_letters(name), found.size());
        if (is_new)
            found.push_back({name, ""});
        found[at->second].parts += part + ";";
    }
    return found;
}

} // namespace tool
