// A pair is found by an index, without a lock; an instance of it is lent under the lock, and given back
// without. What is missing is opened outside of the lock and appended: to the pair's chain of instances, or
// to the list of pairs and its index.
//
// Invariant: a failure is not remembered, and a record is never taken out before the stop.

#include "zel/conversion/converter_cache.h"

#include "zel.h"
#include "zel/base/charset_names.h"
#include "zel/base/escapes.h"
#include "zel/base/frame.h"
#include "zel/conversion/routes.h"

#include <unicode/ucnv_cb.h>
#include <unicode/ucnv_err.h>

#include <cstring>

namespace zel {
namespace {

record_link<EncodingConverter> ZEL_zecCacheHead{nullptr};
record_link<EncodingConverter> *end_of_pairs = &ZEL_zecCacheHead; // under the lock
name_index<EncodingConverter> pair_index{};

using unlinked_converter = owned_record<EncodingConverter>;

struct opened_charset {
    icu_converter cnv;
    std::int32_t max_char_size;
};

// ICU's own escapes leave out what a reader does not see, such as a soft hyphen or a joiner.
void escape_unmapped(const void *, UConverterFromUnicodeArgs *args, const UChar *units, std::int32_t length,
                     UChar32, UConverterCallbackReason reason, UErrorCode *status) {
    if (reason > UCNV_IRREGULAR)
        return;
    *status = U_ZERO_ERROR;
    for (std::int32_t i = 0; i < length; ++i) {
        const unicode_escape escape = escape_of(units[i]);
        ucnv_cbFromUWriteBytes(args, escape.data(), static_cast<std::int32_t>(escape.size()), 0, status);
    }
}

// US-ASCII in which all else is escaped. ICU knows nothing of the longer output, so the record carries its
// size.
opened_charset open_escaped_unicode(UErrorCode &status) {
    icu_converter cnv(ucnv_open("US-ASCII", &status));
    ucnv_setFromUCallBack(cnv.get(), escape_unmapped, nullptr, nullptr, nullptr, &status);
    return {std::move(cnv), static_cast<std::int32_t>(sizeof(unicode_escape))};
}

opened_charset open_charset(const char *name) {
    UErrorCode status = U_ZERO_ERROR;
    opened_charset opened = {};
    if (same_name(name, encEUNICODE)) {
        opened = open_escaped_unicode(status);
    } else {
        opened.cnv.reset(ucnv_open(same_name(name, encMUTF7) ? "IMAP-mailbox-name" : name, &status));
        if (U_SUCCESS(status))
            opened.max_char_size = ucnv_getMaxCharSize(opened.cnv.get());
    }
    if (U_FAILURE(status))
        opened.cnv.reset();
    return opened;
}

unlinked_converter new_converter(const char *from_charset, const char *to_charset) {
    unlinked_converter fresh = new_record<EncodingConverter>();
    if (!fresh)
        return nullptr;
    fresh->from_cnv = open_charset(from_charset).cnv;
    if (!fresh->from_cnv)
        return nullptr;
    opened_charset target = open_charset(to_charset);
    if (!target.cnv)
        return nullptr;
    fresh->to_cnv = std::move(target.cnv);
    fresh->min_char_size = ucnv_getMinCharSize(fresh->from_cnv.get());
    fresh->max_char_size = target.max_char_size;
    fresh->growth = growth_factor(from_charset, to_charset);
    fresh->from_name.reset(strdup(from_charset));
    fresh->to_name.reset(strdup(to_charset));
    if (!fresh->from_name || !fresh->to_name)
        return nullptr;
    fresh->place.hash = hash_names(from_charset, to_charset);
    fresh->in_use.store(1, std::memory_order_relaxed);
    return fresh;
}

EncodingConverter *take_free_instance(EncodingConverter *pair) {
    const held_lock lock = hold(encodingconverter_lock);
    EncodingConverter *instance = pair;
    while (instance && instance->in_use.load(std::memory_order_acquire))
        instance = instance->next_instance.load(std::memory_order_relaxed);
    if (instance)
        instance->in_use.store(1, std::memory_order_relaxed);
    return instance;
}

// Appends to the chain of the pair, or to the list of pairs where the pair was not found. Two threads that
// meet a new pair at once both append to the list; the second entry is never found again, which does no harm.
EncodingConverter *append(EncodingConverter *pair, unlinked_converter fresh) {
    EncodingConverter *linked = fresh.get();
    const held_lock lock = hold(encodingconverter_lock);
    if (pair) {
        append_record(&pair->next_instance, &EncodingConverter::next_instance, std::move(fresh));
    } else {
        end_of_pairs = append_record(end_of_pairs, &EncodingConverter::next_pair, std::move(fresh));
        add_to_index(pair_index, *linked);
    }
    return linked;
}

void discard_if_free(EncodingConverter *converter) {
    if (!converter->in_use.load(std::memory_order_acquire))
        discard_record(converter);
}

void discard_pair(EncodingConverter *pair) {
    EncodingConverter *instance = pair->next_instance.load(std::memory_order_relaxed);
    while (instance) {
        EncodingConverter *next = instance->next_instance.load(std::memory_order_relaxed);
        discard_if_free(instance);
        instance = next;
    }
    discard_if_free(pair);
}

} // namespace

EncodingConverter *find_pair(const char *from_charset, const char *to_charset) {
    return find_record(pair_index, hash_names(from_charset, to_charset), [=](const EncodingConverter &pair) {
        return are_same(pair.from_name.get(), from_charset) && are_same(pair.to_name.get(), to_charset);
    });
}

EncodingConverter *load_encodingconverter(const char *from_charset, const char *to_charset) {
    require_started();
    EncodingConverter *pair = find_pair(from_charset, to_charset);
    if (EncodingConverter *instance = pair ? take_free_instance(pair) : nullptr)
        return instance;
    unlinked_converter fresh = new_converter(from_charset, to_charset);
    if (!fresh)
        return nullptr;
    if (!pair)
        prepare(fresh->path, fresh->from_cnv.get(), fresh->to_cnv.get());
    return append(pair, std::move(fresh));
}

void unload_encodingconverter(EncodingConverter *converter) {
    if (!converter)
        return;
    ucnv_reset(converter->from_cnv.get());
    ucnv_reset(converter->to_cnv.get());
    converter->in_use.store(0, std::memory_order_release);
}

} // namespace zel

using namespace zel;

int32_t ZEL_EncodingConverterExists(const char *from_charset, const char *to_charset) {
    require_started();
    return find_pair(from_charset, to_charset) || borrow_converter(from_charset, to_charset) ? 1 : 0;
}

void terminate_encodingconverter(void) {
    {
        const held_lock lock = hold(encodingconverter_lock);
        EncodingConverter *pair = ZEL_zecCacheHead.load(std::memory_order_relaxed);
        while (pair) {
            EncodingConverter *next = pair->next_pair.load(std::memory_order_relaxed);
            discard_pair(pair);
            pair = next;
        }
    }
    release_tables();
    PR_DestroyRWLock(encodingconverter_lock);
}
