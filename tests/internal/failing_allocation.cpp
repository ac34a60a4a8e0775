// See failing_allocation.h. Only calls that the test executable itself makes are wrapped: ICU, NSPR and the
// C++ library keep their allocator.

#include "failing_allocation.h"

#include <cstddef>
#include <cstdint>

namespace {

thread_local bool armed = false;
thread_local int countdown = 0;

bool fails() {
    return armed && --countdown < 0;
}

} // namespace

void fail_allocation_after(int count) {
    armed = true;
    countdown = count;
}

void no_failing_allocations() {
    armed = false;
}

extern "C" {

void *__real_malloc(std::size_t size);
void *__real_xmalloc(std::uint32_t size);
char *__real_strdup(const char *text);

void *__wrap_malloc(std::size_t size) {
    return fails() ? nullptr : __real_malloc(size);
}
void *__wrap_xmalloc(std::uint32_t size) {
    return fails() ? nullptr : __real_xmalloc(size);
}
char *__wrap_strdup(const char *text) {
    return fails() ? nullptr : __real_strdup(text);
}
}
