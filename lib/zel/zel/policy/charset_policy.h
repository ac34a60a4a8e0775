// What a language's messages and web pages are written in. The bundle "encbylang" has the first word, the
// table of languages the second, and whichever of them spoke is remembered.
//
// Invariant: the answer is never null and stays valid until the stop.

#pragma once

#include "zel.h"

namespace zel {

// The charset of a mail in the language, whatever its text; "us-ascii" for what is no language.
const char *mail_charset(const char *language);

// The charset of a web page in the language; "iso-8859-1" for what is no language.
const char *http_charset(const char *language);

// Whether words in the charset are decoded in messages of the language.
bool is_known_charset(LanguageID id, const char *charset);

} // namespace zel
