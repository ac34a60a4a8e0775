// Whether a text is free of the combining marks that canonical order may put another way round, so that it
// needs no normalization before its characters are compared.
//
// Invariant: a text that holds such a mark is never taken for one without.

#pragma once

#include <string_view>

namespace zel {

// True where no character of the text begins, decomposed, with a combining mark; so of most Latin, Greek,
// Cyrillic and East Asian text. False where that is not known.
bool keeps_order(std::u16string_view text);

// True where no text of the charset can be otherwise.
bool lacks_marks(const char *charset);

} // namespace zel
