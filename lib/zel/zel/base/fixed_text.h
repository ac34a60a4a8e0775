// Texts in buffers of the library's own, such as keys and paths.
//
// Invariant: every text is terminated, and whoever joins one that does not fit is told.

#pragma once

#include "zel/base/output.h"

#include <initializer_list>

namespace zel {

// Fills a buffer with all of the parts, or says that they do not fit.
template <std::size_t Size>
bool join(char (&buf)[Size], std::initializer_list<std::string_view> parts) {
    output to = output_to(buf, Size);
    const bool whole =
        std::all_of(parts.begin(), parts.end(), [&](std::string_view part) { return put(to, part); });
    finish(to);
    return whole;
}

} // namespace zel
