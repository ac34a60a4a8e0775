// Conversion of whole strings: a terminated string goes in, a new one comes out, for the caller to own.
//
// Invariant: the result is a fresh, terminated heap string, or null for a null input, a missing source
// charset or failing memory; it is never the input itself.

#pragma once

#include "zel/base/owned.h"

namespace zel {

heap_string duplicate(const char *text);

// As ZEL_LocalToLocal.
heap_string local_to_local(const char *text, const char *from_charset, const char *to_charset);

} // namespace zel
