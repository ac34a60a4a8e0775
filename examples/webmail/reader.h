// Who reads: the language and the time zone, as the browser says them or as they were chosen on a page.

#pragma once

#include "server.h"

#include <optional>

struct reader {
    std::string language; // one of zel::languages()
    std::string zone;

    // The other text stands for a time that is not there, or not in the years that the library knows.
    std::string date(const std::optional<std::int64_t> &time, const std::string &otherwise) const;
};

reader reader_of(const request &asked);

// What the pages say in a language.
const values &words_of(const std::string &language);
