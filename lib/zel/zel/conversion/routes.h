// Which pairs of charsets have a converter of the library's own, where it is used, and how much a text of
// theirs may grow. All other pairs go by a table or by ICU.

#pragma once

#include "zel/direct/converters.h"

#include <cstdint>

namespace zel {

enum class scope : unsigned { buffers = 1, headers = 2, received_bodies = 4, sent_bodies = 8 };

struct route {
    const char *from_charset;
    const char *to_charset;
    const char *language; // whose bodies take it, by its first two letters
    std::uint64_t factor; // bytes that a byte becomes at most, where sizes go by that; else 0
    unsigned scopes;
    conversion *convert;
};

// Null where the pair has no route in that scope.
const route *find_route(scope where, const char *from_charset, const char *to_charset);

// Of the pair's route, in whatever scope; 0 where its size goes by the converters of ICU.
std::uint64_t growth_factor(const char *from_charset, const char *to_charset);

// The whole result or nothing of it.
bool put_whole(output &to, conversion &convert, input from);

} // namespace zel
