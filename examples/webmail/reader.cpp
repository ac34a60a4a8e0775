#include "reader.h"

#include "files.h"

#include <sstream>

namespace {

// Languages that browsers ask for by other names than the library's.
const values other_names = {{"iw", "he"},         {"ji", "yi"},         {"nb", "no"},
                            {"nn", "no"},         {"zh-Hans", "zh-CN"}, {"zh-SG", "zh-CN"},
                            {"zh-Hant", "zh-TW"}, {"zh-HK", "zh-TW"},   {"zh-MO", "zh-TW"}};

// As the library spells it.
std::optional<std::string> known(const std::string &tag) {
    const auto id = zel::language_id(other_names.count(tag) ? other_names.at(tag) : tag);
    return id ? std::optional(zel::languages()[static_cast<std::size_t>(*id) - 1]) : std::nullopt;
}

// The language of the highest quality that is known, be it without its country.
std::string accepted(const std::string &list) {
    std::multimap<double, std::string, std::greater<>> by_quality;
    for (const std::string &piece : zel::accepted_languages(list)) {
        const std::size_t start = std::min(piece.find_first_not_of(" \t"), piece.size()),
                          quality = piece.find("q=");
        by_quality.emplace(quality == std::string::npos ? 1 : std::atof(piece.c_str() + quality + 2),
                           piece.substr(start, piece.find_first_of("; \t", start) - start));
    }
    for (auto &[quality, tag] : by_quality)
        for (; quality > 0 && !tag.empty();
             tag.erase(tag.find('-') == std::string::npos ? 0 : tag.rfind('-')))
            if (const auto language = known(tag))
                return *language;
    return "en";
}

// The first line of the table has the keys, and the first column the languages.
std::map<std::string, values> read_words() {
    std::map<std::string, values> table;
    std::istringstream lines(words_txt);
    std::string line, key_line, key, word;
    for (std::getline(lines, key_line); std::getline(lines, line);) {
        std::istringstream keys(key_line), words(line);
        values &row = table[line.substr(0, line.find('|'))];
        while (std::getline(keys, key, '|') && std::getline(words, word, '|'))
            row[key] = word;
    }
    return table;
}

} // namespace

std::string reader::date(const std::optional<std::int64_t> &time, const std::string &otherwise) const {
    try {
        return time ? zel::date(language, zone, *time) : otherwise;
    } catch (const zel::error &) {
        return otherwise;
    }
}

reader reader_of(const request &asked) {
    reader found = {"", "GMT"};
    for (const values *said : {&asked.cookies, &asked.query}) {
        const auto language = said->find("language"), zone = said->find("zone");
        if (language != said->end())
            found.language = known(language->second).value_or(found.language);
        if (zone != said->end() && zone->second.size() < 64)
            found.zone = zone->second;
    }
    if (found.language.empty())
        found.language = accepted(asked.languages);
    return found;
}

const values &words_of(const std::string &language) {
    static const std::map<std::string, values> words = read_words();
    return words.at(language);
}
