// See icu_locale.h. Whether a name is well-formed is a question for the class that ICU's own functions make
// of it. Names of the commonest form always are, and are spared it, as it costs as much as other
// steps of a comparison.

#include "zel/locale/icu_locale.h"

#include "zel.h"

#include <unicode/locid.h>

#include <cstring>

namespace zel {
namespace {

bool is_letter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

// Two letters, maybe with a territory of two: de, de_AT.
bool is_plain(const char *name) {
    if (!is_letter(name[0]) || !is_letter(name[1]))
        return false;
    if (name[2] == '\0')
        return true;
    return name[2] == '_' && is_letter(name[3]) && is_letter(name[4]) && name[5] == '\0';
}

} // namespace

std::optional<icu_locale> find_locale(const char *locale) {
    const char *source = locale ? locale : uloc_getDefault();
    const std::size_t len = strnlen(source, ULOC_FULLNAME_CAPACITY);
    if (len == ULOC_FULLNAME_CAPACITY)
        return std::nullopt;
    icu_locale copy;
    std::memcpy(copy.name, source, len + 1);
    char *name = copy.name;
    ZEL_NormalizeLocale(&name);
    if (!is_plain(name) && icu::Locale(name).isBogus())
        return std::nullopt;
    return copy;
}

} // namespace zel
