// The remembered answers: what the bundle "encbylang" or a built-in rule once gave for a key such as
// "mail|ja" is the answer as long as the process runs, so that a language costs one look into the bundle.
//
// Invariant: an entry is complete before it is linked, is never unlinked or changed before the stop, and each
// link changes once, from null to its final value (release store). So the list is walked without a lock
// (acquire loads). Entries are appended, and the bundle is read, with localconfig_lock held.

#pragma once

#include "zel/base/owned.h"

#include <atomic>

namespace zel {

struct LocalConfigEntry {
    heap_string key;
    heap_string value;
    std::atomic<LocalConfigEntry *> next;
};

extern std::atomic<LocalConfigEntry *> LocalConfigHead;

void release_localconfig(LocalConfigEntry *entry);

using owned_entry = owned<LocalConfigEntry, &release_localconfig>;

// A linked entry of the key in any case, or else the value of the bundle, which is remembered. Null for a
// miss: the caller remembers the built-in answer then.
const char *load_localconfig(const char *key);

// Appends an entry and gives its own copy of the value, null where there is no memory. A last_entry spares
// the walk to the end of the list. The caller holds localconfig_lock.
const char *add_localconfig(LocalConfigEntry *last_entry, const char *key, const char *value);

owned_entry _new_localconfig(const char *key, const char *value);

} // namespace zel
