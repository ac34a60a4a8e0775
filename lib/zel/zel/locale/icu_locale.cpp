// See icu_locale.h. Whether a name is well-formed is a question for the class that ICU's own functions make
// of it.

#include "zel/locale/icu_locale.h"

#include "zel.h"

#include <unicode/locid.h>

#include <cstring>

namespace zel {

std::optional<icu_locale> find_locale(const char *locale) {
    const char *source = locale ? locale : uloc_getDefault();
    const std::size_t len = strnlen(source, ULOC_FULLNAME_CAPACITY);
    if (len == ULOC_FULLNAME_CAPACITY)
        return std::nullopt;
    icu_locale copy;
    std::memcpy(copy.name, source, len + 1);
    char *name = copy.name;
    ZEL_NormalizeLocale(&name);
    if (icu::Locale(name).isBogus())
        return std::nullopt;
    return copy;
}

} // namespace zel
