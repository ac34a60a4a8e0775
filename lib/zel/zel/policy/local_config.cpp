#include "zel/policy/local_config.h"

#include "zel.h"
#include "zel/base/charset_names.h"
#include "zel/base/frame.h"
#include "zel/policy/bundle_message.h"

#include <cstring>

namespace zel {

record_link<LocalConfigEntry> LocalConfigHead{nullptr};

namespace {

const LocalConfigEntry *find(const char *key) {
    const LocalConfigEntry *entry = LocalConfigHead.load(std::memory_order_acquire);
    while (entry && !same_name(entry->key.get(), key))
        entry = entry->next.load(std::memory_order_acquire);
    return entry;
}

} // namespace

owned_record<LocalConfigEntry> _new_localconfig(const char *key, const char *value) {
    auto entry = new_record<LocalConfigEntry>();
    if (!entry)
        return nullptr;
    entry->key.reset(strdup(key));
    entry->value.reset(strdup(value));
    return entry->key && entry->value ? std::move(entry) : nullptr;
}

const char *add_localconfig(const char *key, const char *value) {
    auto entry = _new_localconfig(key, value);
    if (!entry)
        return nullptr;
    const char *remembered = entry->value.get();
    append_record(LocalConfigHead, &LocalConfigEntry::next, std::move(entry));
    return remembered;
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
        owned_record<LocalConfigEntry> entry(LocalConfigHead.exchange(nullptr, std::memory_order_relaxed));
        while (entry)
            entry.reset(entry->next.load(std::memory_order_relaxed));
    }
    PR_DestroyRWLock(localconfig_lock);
}
