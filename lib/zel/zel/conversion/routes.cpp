// The table of routes, and how the rest of the library asks it.
//
// Invariant: no two rows serve the same pair in one scope.

#include "zel/conversion/routes.h"

#include "zel/base/charset_names.h"

namespace zel {
namespace {

constexpr unsigned operator|(scope one, scope other) {
    return static_cast<unsigned>(one) | static_cast<unsigned>(other);
}

constexpr unsigned only(scope one) {
    return static_cast<unsigned>(one);
}

// The map of characters folds between traditional and simplified forms, which no code page does: so its pairs
// stay out of ICU everywhere.
constexpr route routes[] = {
    {ianaISO2022JP, ianaEUCJP, "ja", 2, scope::headers | scope::received_bodies, convert_jis_to_eucjp},
    {ianaISO2022JP, ianaSHIFTJIS, "ja", 1, scope::headers | scope::received_bodies, convert_jis_to_sjis},
    {ianaSHIFTJIS, ianaISO2022JP, "ja", 2, only(scope::sent_bodies), convert_sjis_to_jis},
    {ianaEUCJP, ianaISO2022JP, "ja", 2, only(scope::sent_bodies), convert_eucjp_to_jis},
    {ianaISO2022KR, ianaEUCKR, "ko", 2, only(scope::received_bodies), convert_iso2022kr_to_euckr},
    {ianaHZ, ianaGB2312, "zh", 0, only(scope::received_bodies), convert_hz_to_gb},
    {ianaGB2312, ianaBIG5, "zh", 0, only(scope::buffers), convert_gb_to_big5},
    {ianaBIG5, ianaGB2312, "zh", 0, only(scope::buffers), convert_big5_to_gb},
};

bool serves(const route &row, const char *from_charset, const char *to_charset) {
    return same_name(row.from_charset, from_charset) && same_name(row.to_charset, to_charset);
}

} // namespace

const route *find_route(scope where, const char *from_charset, const char *to_charset) {
    for (const route &row : routes)
        if ((row.scopes & only(where)) && serves(row, from_charset, to_charset))
            return &row;
    return nullptr;
}

std::uint64_t growth_factor(const char *from_charset, const char *to_charset) {
    for (const route &row : routes)
        if (row.factor && serves(row, from_charset, to_charset))
            return row.factor;
    return 0;
}

// No byte becomes more than two but in text that goes to ISO-2022-JP.
bool put_whole(output &to, conversion &convert, input from) {
    if (!fits(to, 2 * left(from))) {
        output counted = counting_output();
        convert(from, counted);
        if (!fits(to, counted.length))
            return false;
    }
    convert(from, to);
    return true;
}

} // namespace zel
