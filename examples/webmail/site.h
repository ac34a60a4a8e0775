// The site: who reads, the pages, as HTML in UTF-8, and what each address answers. No page leaves it without
// the headers that keep a browser from running what is not ours, and no form comes in that is not ours.

#pragma once

#include "html.h"
#include "maildir.h"
#include "server.h"

// The language and the time zone, as the browser says them or as they were chosen on a page.
struct reader {
    std::string language, zone = "GMT"; // the language is one of zel::languages()

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

// A page around its content. It has a choice of the language but where that would lose what was typed.
html framed(const request &asked, const html &title, const html &content);

html list_page(const request &asked, const letter_list &all);
html letter_page(const request &asked, const message &letter);
html compose_page(const request &asked, values typed, const std::string &complaint);
std::string percent_encoded(const std::string &text);
response answer(maildir &letters, const request &asked);
