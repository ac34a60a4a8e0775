#include "zel/policy/local_config.h"

#include "zel.h"
#include "zel/base/charset_names.h"
#include "zel/base/frame.h"
#include "zel/policy/bundle_message.h"

#include <cstring>
#include <new>

namespace zel {

std::atomic<LocalConfigEntry *> LocalConfigHead{nullptr};

namespace {

const LocalConfigEntry *find(const char *key) {
    const LocalConfigEntry *entry = LocalConfigHead.load(std::memory_order_acquire);
    while (entry && !same_name(entry->key.get(), key))
        entry = entry->next.load(std::memory_order_acquire);
    return entry;
}

} // namespace

void release_localconfig(LocalConfigEntry *entry) {
    const heap<LocalConfigEntry> memory(entry);
    std::destroy_at(entry);
}

owned_entry _new_localconfig(const char *key, const char *value) {
    void *memory = xmalloc(sizeof(LocalConfigEntry));
    if (!memory)
        return nullptr;
    owned_entry entry(new (memory) LocalConfigEntry{});
    entry->key.reset(strdup(key));
    entry->value.reset(strdup(value));
    return entry->key && entry->value ? std::move(entry) : nullptr;
}

const char *add_localconfig(LocalConfigEntry *last_entry, const char *key, const char *value) {
    owned_entry entry = _new_localconfig(key, value);
    if (!entry)
        return nullptr;
    std::atomic<LocalConfigEntry *> *end = &LocalConfigHead;
    if (last_entry && end->load(std::memory_order_relaxed))
        end = &last_entry->next;
    while (LocalConfigEntry *linked = end->load(std::memory_order_relaxed))
        end = &linked->next;
    end->store(entry.get(), std::memory_order_release);
    return entry.release()->value.get();
}

const char *load_localconfig(const char *key) {
    if (const LocalConfigEntry *entry = find(key))
        return entry->value.get();
    require_started();
    const held_lock lock = hold(localconfig_lock);
    const owned_bundle bundle = open_encbylang(bundles_path);
    const heap_string value = utf8_message(bundle.get(), key);
    return value ? add_localconfig(nullptr, key, value.get()) : nullptr;
}

} // namespace zel

using namespace zel;

void terminate_localconfig(void) {
    {
        const held_lock lock = hold(localconfig_lock);
        owned_entry entry(LocalConfigHead.exchange(nullptr, std::memory_order_relaxed));
        while (entry)
            entry.reset(entry->next.load(std::memory_order_relaxed));
    }
    PR_DestroyRWLock(localconfig_lock);
}
