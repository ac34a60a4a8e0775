// An answer is looked for by its index, without a lock. Only where there is none is the lock taken and the
// bundle read, for one thread at a time; the answer is then appended, unless another thread has just done so.
//
// Invariant: that of the list.

#include "zel/policy/local_config.h"

#include "zel.h"
#include "zel/base/frame.h"
#include "zel/policy/bundle_message.h"

#include <cstring>

namespace zel {

record_link<LocalConfigEntry> LocalConfigHead{nullptr};

namespace {

record_link<LocalConfigEntry> *end_of_list = &LocalConfigHead; // under the lock
name_index<LocalConfigEntry> key_index{};

const LocalConfigEntry *find(const char *key) {
    return find_record(key_index, hash_name(key),
                       [=](const LocalConfigEntry &entry) { return are_same(entry.key.get(), key); });
}

} // namespace

owned_record<LocalConfigEntry> _new_localconfig(const char *key, const char *value) {
    auto entry = new_record<LocalConfigEntry>();
    if (!entry)
        return nullptr;
    entry->key.reset(strdup(key));
    entry->value.reset(strdup(value));
    entry->place.hash = hash_name(key);
    return entry->key && entry->value ? std::move(entry) : nullptr;
}

const char *add_localconfig(const char *key, const char *value) {
    auto entry = _new_localconfig(key, value);
    if (!entry)
        return nullptr;
    LocalConfigEntry *linked = entry.get();
    end_of_list = append_record(end_of_list, &LocalConfigEntry::next, std::move(entry));
    add_to_index(key_index, *linked);
    return linked->value.get();
}

const char *load_localconfig(const char *key) {
    if (const LocalConfigEntry *entry = find(key))
        return entry->value.get();
    require_started();
    const held_lock lock = hold(localconfig_lock);
    const owned_bundle bundle = open_encbylang(bundles_path);
    const heap_string value = utf8_message(bundle.get(), key);
    return value ? add_localconfig(key, value.get()) : nullptr;
}

} // namespace zel

using namespace zel;

void terminate_localconfig(void) {
    {
        const held_lock lock = hold(localconfig_lock);
        for (auto &link : key_index)
            link.store(nullptr, std::memory_order_relaxed);
        end_of_list = &LocalConfigHead;
        owned_record<LocalConfigEntry> entry(LocalConfigHead.exchange(nullptr, std::memory_order_relaxed));
        while (entry)
            entry.reset(entry->next.load(std::memory_order_relaxed));
    }
    PR_DestroyRWLock(localconfig_lock);
}
