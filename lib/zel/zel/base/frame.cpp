// The exported data that start-up fills, and the lock that is held in a scope. A broken contract of a call
// ends in fail_assertion, which says so on stderr in every build and stops the process.
//
// Invariant: only the status word changes while other threads are inside.

#include "zel/base/frame.h"

#include <cstdio>

extern "C" {
int32_t gf_ZELStatus = ZEL_STATUS_NOT_INITIALIZED;
ZELConfig g_zelconf = {};
PRRWLock *encodingconverter_lock = nullptr;
PRRWLock *localconfig_lock = nullptr;
}

namespace zel {

char bundles_path[path_capacity] = "";
char encLocal[charset_capacity] = "";

held_lock hold(PRRWLock *lock) {
    PR_RWLock_Wlock(lock);
    return held_lock(lock);
}

void fail_assertion(const char *expression, const char *source) {
    std::fprintf(stderr, "%s: assertion failed: %s\n", source, expression);
    std::fflush(stderr);
    std::abort();
}

bool passes_8bit() {
    return g_zelconf.pass_8bit != 0;
}

} // namespace zel
