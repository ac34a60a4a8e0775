// Who reads: the language and the time zone, as the browser says them or as they were chosen on a page.

#pragma once

#include "server.h"

struct reader {
    std::string language; // one of zel::languages()
    std::string zone = "GMT";

    // The other text stands for a time that is not there, or not in the years that the library knows.
    std::string date(const std::optional<std::int64_t> &time, const std::string &otherwise) const try {
        return time ? zel::date(language, zone, *time) : otherwise;
    } catch (const zel::error &) {
        return otherwise;
    }
};

inline reader reader_of(const request &asked) {
    reader found = {zel::preferred_language(asked.languages).value_or("en")};
    const std::vector<std::string> languages = zel::languages();
    for (const values *said : {&asked.cookies, &asked.query}) {
        const auto language = said->find("language"), zone = said->find("zone");
        if (language != said->end() && std::count(languages.begin(), languages.end(), language->second))
            found.language = language->second;
        if (zone != said->end() && zone->second.size() < 64)
            found.zone = zone->second;
    }
    return found;
}
