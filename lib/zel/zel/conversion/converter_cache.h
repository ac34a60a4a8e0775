// The cache of ICU converter pairs. A caller borrows a record, drives ICU with the two converters in it, and
// gives it back by letting the lent_converter go; in between the record is its own, and no lock is held.
//
// Invariant: the lists are those of records.h, with an index of the pairs beside them, under
// encodingconverter_lock. in_use becomes 1 under that lock alone and 0 by its holder's release store.

#pragma once

#include "zel/base/icu_converter.h"
#include "zel/base/name_index.h"
#include "zel/fast_path/fast_path.h"

#include <cstdint>

namespace zel {

struct EncodingConverter {
    icu_converter from_cnv;
    icu_converter to_cnv;
    record_link<EncodingConverter> next_pair;     // next distinct pair; of a pair's first record alone
    record_link<EncodingConverter> next_instance; // next record of the same pair
    std::atomic<std::int32_t> in_use;
    heap_string from_name;
    heap_string to_name;
    std::int32_t min_char_size;           // bytes a character of the source at least
    std::int32_t max_char_size;           // bytes a UTF-16 unit at most in the target
    std::uint64_t growth;                 // bytes a byte at most on a route; 0: max_char_size tells
    index_place<EncodingConverter> place; // of the pair, as is the fast path; in its first record alone
    fast_path path;
};

// The first record of the pair, not borrowed: for what does not touch its converters. Null for a pair not yet
// met.
EncodingConverter *find_pair(const char *from_charset, const char *to_charset);

EncodingConverter *load_encodingconverter(const char *from_charset, const char *to_charset);
void unload_encodingconverter(EncodingConverter *converter);

// A record that goes back to the cache at the end of the scope; null where ICU has no converter for the pair.
using lent_converter = owned<EncodingConverter, &unload_encodingconverter>;

inline lent_converter borrow_converter(const char *from_charset, const char *to_charset) {
    return lent_converter(load_encodingconverter(from_charset, to_charset));
}

} // namespace zel
