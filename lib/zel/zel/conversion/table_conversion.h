// Conversion by tables, without ICU: one walk over the text, runs of ASCII by blocks and one read of the
// table for each other character.
//
// Invariant: what these roads decide is what ICU decides, to the byte. Where a table has no answer the walk
// gives up, and the text goes to ICU from its start.

#pragma once

#include "zel/conversion/code_table.h"
#include "zel/conversion/text_walk.h"

#include <bitset>

namespace zel {

using table_conversion = verdict (*)(const code_table &, byte_pass &);

verdict convert_to_utf8(const code_table &table, byte_pass &pass);
verdict convert_from_utf8(const code_table &table, byte_pass &pass);

// The same for charsets without pairs that keep all of ASCII. The first serves two of them as well.
verdict convert_singles(const byte_table &table, byte_pass &pass);
verdict convert_utf8_to_singles(const code_table &table, byte_pass &pass);

// The same for ISO-2022-JP, whose text has states.
verdict convert_jis_to_utf8(const code_table &table, byte_pass &pass);
verdict convert_utf8_to_jis(const code_table &table, byte_pass &pass);

// The bytes of ASCII that stay the same between two charsets; those of plain text all or none.
using ascii_identity = std::bitset<128>;

verdict copy_ascii(const ascii_identity &kept, byte_pass &pass);

} // namespace zel
