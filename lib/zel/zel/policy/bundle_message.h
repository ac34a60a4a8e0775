// Texts that hosts and administrators supply: strings of an ICU resource bundle, in UTF-8, and among the
// bundles "encbylang", which names charsets by language and by LANG. A bundle, a key or a text that cannot be
// had is a null, and the caller goes on with what the library has built in.

#pragma once

#include "zel/base/owned.h"

#include <unicode/ures.h>

namespace zel {

using owned_bundle = owned<UResourceBundle, &ures_close>;

// The bundle "encbylang" under a root. Its locale is always "en" and has nothing to do with the user's.
owned_bundle open_encbylang(const char *root);

// As resourceBundleGetUTF8Message.
heap_string utf8_message(UResourceBundle *bundle, const char *key);

} // namespace zel
