// What the canonical order of combining marks asks of a text before its characters are compared: no
// normalization where the text is free of them, and breaks in runs of them that no reader writes.
//
// Invariant: a text that holds such a mark is never taken for one without, and what is done to a text depends
// on that text alone.

#pragma once

#include "zel/base/utf16_text.h"

#include <string_view>

namespace zel {

// True where no character of the text begins, decomposed, with a combining mark; so of most Latin, Greek,
// Cyrillic and East Asian text. False where that is not known.
bool keeps_order(std::u16string_view text);

// True where no text of the charset can be otherwise.
bool lacks_marks(const char *charset);

// Puts U+034F, which collation ignores, behind every 30 marks of a run of more than 256, as the stream-safe
// format of UAX #15 does, since ICU looks through the whole run for each mark. A text without such a run
// comes back as it is. Null where there is no memory.
utf16_text break_long_runs(utf16_text text);

} // namespace zel
