// The state that start-up settles and every other module reads: the status word, the start-up record, the
// local charset, the bundle root and the two locks. The module on top (init) fills it.
//
// Invariant: written while no other thread is inside the library, so it is read without a lock. The host
// alone may store into the status word later.

#pragma once

#include "owned.h"
#include "zel.h"

#include <prrwlock.h>

#include <atomic>
#include <cstdint>

namespace zel {

inline constexpr std::size_t path_capacity = 1024;
inline constexpr std::size_t charset_capacity = 100;

extern char bundles_path[path_capacity];
extern char encLocal[charset_capacity];

// A lock that is held, until it goes out of scope.
using held_lock = owned<PRRWLock, &PR_RWLock_Unlock>;
held_lock hold(PRRWLock *lock);

// Contract violations stop the process in every build type.
[[noreturn]] void fail_assertion(const char *expression, const char *source);

// Atomic, so that a host that stores while threads are inside tears nothing.
inline std::int32_t status_word() {
    return std::atomic_ref<std::int32_t>(gf_ZELStatus).load(std::memory_order_relaxed);
}

inline bool has_started() {
    return status_word() != ZEL_STATUS_NOT_INITIALIZED;
}

inline void require_started() {
    if (!has_started()) [[unlikely]]
        fail_assertion("gf_ZELStatus != ZEL_STATUS_NOT_INITIALIZED", "zel");
}

inline bool passes_through() {
    return status_word() == ZEL_STATUS_PASSTHROUGH;
}

bool passes_8bit();

inline const char *or_local_charset(const char *charset) {
    return charset ? charset : encLocal;
}

} // namespace zel
