// Conversion by tables, without ICU: one walk over the text, runs of printable ASCII by sixteen bytes and one
// read of the table for each other character.
//
// Invariant: what these roads decide is what ICU decides, to the byte. Where a table has no answer the walk
// gives up, and the text goes to ICU from its start.

#pragma once

#include "zel/base/ascii_run.h"
#include "zel/conversion/code_table.h"

#include <bitset>

namespace zel {

enum class verdict {
    done,      // the whole text is converted
    full,      // the next character does not fit
    undecided, // for ICU, from the start of the text
};

using table_conversion = verdict (*)(const code_table &, byte_pass &);

verdict convert_to_utf8(const code_table &table, byte_pass &pass);
verdict convert_from_utf8(const code_table &table, byte_pass &pass);

// The same for ISO-2022-JP, whose text has states.
verdict convert_jis_to_utf8(const code_table &table, byte_pass &pass);
verdict convert_utf8_to_jis(const code_table &table, byte_pass &pass);

// The bytes of ASCII that stay the same between two charsets; printable ones all or none.
using ascii_identity = std::bitset<128>;

verdict copy_ascii(const ascii_identity &kept, byte_pass &pass);

} // namespace zel
