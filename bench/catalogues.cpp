#include "catalogues.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>

namespace bench {
namespace {

constexpr const char *catalogues[] = {
    "coreutils",  "gettext-tools", "glib20",    "gnupg2",    "libc",      "iso_15924",
    "iso_3166-1", "iso_3166-2",    "iso_639-2", "iso_639-3", "iso_639-5",
};

std::string content_of(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::uint32_t word_at(const std::string &bytes, std::size_t at) {
    std::uint32_t word = 0;
    if (at + sizeof word <= bytes.size())
        std::memcpy(&word, bytes.data() + at, sizeof word);
    return word;
}

// A catalogue (GNU gettext, .mo) holds the number of its texts at 8 and, where the word at 16 says, length
// and place of each translation. The first one is its header. Catalogues of the other byte order give
// nothing.
std::string translations_of(const std::string &catalogue) {
    constexpr std::uint32_t magic = 0x950412DE;
    std::string texts;
    const std::size_t count = word_at(catalogue, 0) == magic ? word_at(catalogue, 8) : 0;
    for (std::size_t i = 1; i < count; ++i) {
        const std::size_t entry = word_at(catalogue, 16) + 8 * i;
        const std::size_t at = word_at(catalogue, entry + 4);
        if (at < catalogue.size())
            texts += catalogue.substr(at, word_at(catalogue, entry)) + '\n';
    }
    std::ranges::replace(texts, '\0', '\n'); // between the forms of a plural
    return texts;
}

bool is_natural(const std::string &line) {
    const auto is_outside_ascii = [](char byte) { return static_cast<unsigned char>(byte) > 0x7F; };
    return line.size() >= 20 && line.size() <= 400 && std::ranges::any_of(line, is_outside_ascii);
}

std::string trimmed(const std::string &line) {
    const std::size_t start = line.find_first_not_of(" \t");
    return start == line.npos ? "" : line.substr(start, line.find_last_not_of(" \t\r") + 1 - start);
}

} // namespace

std::vector<std::string> catalogue_lines(const std::string &language) {
    std::vector<std::string> lines;
    for (const char *name : catalogues) {
        std::istringstream texts(
            translations_of(content_of("/usr/share/locale/" + language + "/LC_MESSAGES/" + name + ".mo")));
        for (std::string line; std::getline(texts, line);)
            if (line = trimmed(line); is_natural(line))
                lines.push_back(line);
    }
    std::ranges::sort(lines);
    lines.erase(std::unique(lines.begin(), lines.end()), lines.end());
    std::ranges::shuffle(lines, std::mt19937{20240601});
    return lines;
}

} // namespace bench
