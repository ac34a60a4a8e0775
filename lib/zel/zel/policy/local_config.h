// The remembered answers: what the bundle "encbylang" or a built-in rule once gave for a key such as
// "mail|ja" is the answer as long as the process runs, so that a language costs one look into the bundle.
//
// Invariant: the list is that of records.h, with an index beside it, under localconfig_lock, which is held
// too while the bundle is read.

#pragma once

#include "zel/base/name_index.h"

namespace zel {

struct LocalConfigEntry {
    heap_string key;
    heap_string value;
    record_link<LocalConfigEntry> next;
    index_place<LocalConfigEntry> place;
};

extern record_link<LocalConfigEntry> LocalConfigHead;

// A linked entry of the key in any case, or else the value of the bundle, which is remembered. Null for a
// miss: the caller remembers the built-in answer then.
const char *load_localconfig(const char *key);

// Appends an entry and gives its own copy of the value, null where there is no memory. The caller holds
// localconfig_lock.
const char *add_localconfig(const char *key, const char *value);

owned_record<LocalConfigEntry> _new_localconfig(const char *key, const char *value);

} // namespace zel
