// ICU's converter, which its owner closes.

#pragma once

#include "zel/base/owned.h"

#include <unicode/ucnv.h>

namespace zel {

using icu_converter = owned<UConverter, &ucnv_close>;

} // namespace zel
