#include "zel/conversion/converter_cache.h"

#include "zel.h"
#include "zel/base/charset_names.h"
#include "zel/base/frame.h"

#include <unicode/ucnv_err.h>

#include <bit>
#include <cstring>
#include <new>

namespace zel {
namespace {

std::atomic<EncodingConverter *> ZEL_zecCacheHead{nullptr};

void discard_converter(EncodingConverter *converter) {
    std::destroy_at(converter);
    heap<EncodingConverter> memory(converter);
}

using unlinked_converter = owned<EncodingConverter, &discard_converter>;

struct opened_charset {
    icu_converter cnv;
    std::int32_t max_char_size;
};

constexpr std::int32_t escape_length = 6; // \uXXXX

// US-ASCII whose unmappable characters come out as \uXXXX, a surrogate at a time. ICU knows nothing of the
// longer output, so the record carries its size.
opened_charset open_escaped_unicode(UErrorCode &status) {
    icu_converter cnv(ucnv_open("US-ASCII", &status));
    ucnv_setFromUCallBack(cnv.get(), UCNV_FROM_U_CALLBACK_ESCAPE, UCNV_ESCAPE_JAVA, nullptr, nullptr,
                          &status);
    return {std::move(cnv), escape_length};
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

std::uint32_t hash_name(std::uint32_t hash, const char *name) {
    for (; *name; ++name)
        hash = std::rotl(hash, 5) ^ (static_cast<unsigned char>(*name) | 0x20U);
    return hash;
}

std::uint32_t hash_names(const char *from_charset, const char *to_charset) {
    return hash_name(hash_name(0, from_charset) + 1, to_charset);
}

unlinked_converter new_converter(const char *from_charset, const char *to_charset) {
    void *memory = xmalloc(sizeof(EncodingConverter));
    if (!memory)
        return nullptr;
    unlinked_converter fresh(new (memory) EncodingConverter{});
    fresh->from_cnv = open_charset(from_charset).cnv;
    if (!fresh->from_cnv)
        return nullptr;
    opened_charset target = open_charset(to_charset);
    if (!target.cnv)
        return nullptr;
    fresh->to_cnv = std::move(target.cnv);
    fresh->min_char_size = ucnv_getMinCharSize(fresh->from_cnv.get());
    fresh->max_char_size = target.max_char_size;
    fresh->from_name.reset(strdup(from_charset));
    fresh->to_name.reset(strdup(to_charset));
    if (!fresh->from_name || !fresh->to_name)
        return nullptr;
    fresh->name_hash = hash_names(from_charset, to_charset);
    prepare_road(fresh->road, from_charset, to_charset, fresh->from_cnv.get(), fresh->to_cnv.get());
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

using link = std::atomic<EncodingConverter *>;

// Appends to the chain of the pair, or to the list of pairs where the pair was not found. Two threads that
// meet a new pair at once both append to the list; the second entry is never found again, which does no harm.
void append(EncodingConverter *pair, EncodingConverter *fresh) {
    link EncodingConverter::*const next =
        pair ? &EncodingConverter::next_instance : &EncodingConverter::next_pair;
    const held_lock lock = hold(encodingconverter_lock);
    link *end = pair ? &(pair->*next) : &ZEL_zecCacheHead;
    while (EncodingConverter *record = end->load(std::memory_order_relaxed))
        end = &(record->*next);
    end->store(fresh, std::memory_order_release);
}

void discard_if_free(EncodingConverter *converter) {
    if (!converter->in_use.load(std::memory_order_acquire))
        discard_converter(converter);
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
    const std::uint32_t hash = hash_names(from_charset, to_charset);
    EncodingConverter *pair = ZEL_zecCacheHead.load(std::memory_order_acquire);
    while (pair && !(pair->name_hash == hash && same_name(pair->from_name.get(), from_charset) &&
                     same_name(pair->to_name.get(), to_charset)))
        pair = pair->next_pair.load(std::memory_order_acquire);
    return pair;
}

EncodingConverter *load_encodingconverter(const char *from_charset, const char *to_charset) {
    require_started();
    EncodingConverter *pair = find_pair(from_charset, to_charset);
    if (EncodingConverter *instance = pair ? take_free_instance(pair) : nullptr)
        return instance;
    unlinked_converter fresh = new_converter(from_charset, to_charset);
    if (fresh)
        append(pair, fresh.get());
    return fresh.release();
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
