// Text in UTF-16, on its way from one charset to another or to ICU's services.
//
// Invariant: units is null, or holds length units.

#pragma once

#include "zel/base/owned.h"

#include <unicode/ucnv.h>

#include <cstdint>
#include <string_view>

namespace zel {

struct utf16_text {
    heap<UChar> units; // null where the text could not be taken in, or for lack of memory
    std::int32_t length;
};

heap<UChar> allocate_units(std::size_t count);

// A text of n bytes has room for n / min_char_size + 1 units: what needs more is not taken in.
utf16_text to_utf16(UConverter *from_cnv, std::int32_t min_char_size, std::string_view text);

} // namespace zel
