// The name of a locale, made fit for ICU: a private copy in ICU's spelling, known to be one that ICU can work
// with. ICU 72 stops the process on some that it cannot, over-long language subtags among them.

#pragma once

#include <unicode/uloc.h>

#include <optional>

namespace zel {

struct icu_locale {
    char name[ULOC_FULLNAME_CAPACITY];
};

// ICU's default locale for a null; nothing for a name that is too long or that ICU cannot take apart.
std::optional<icu_locale> find_locale(const char *locale);

} // namespace zel
