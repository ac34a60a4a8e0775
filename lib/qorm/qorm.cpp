// The host's support library: memory that is there or stops the process, and the texts of service errors.
//
// The texts are those of the C library in its C locale whatever the host's locale is, so they are ASCII and
// stand in any local charset. The C library keeps them for each thread.

#include "qorm.h"

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>

extern "C" void *xmalloc(uint32_t size) {
    void *memory = std::malloc(size ? size : 1);
    if (!memory) {
        std::fprintf(stderr, "xmalloc: no memory for %u bytes\n", static_cast<unsigned>(size));
        std::abort();
    }
    return memory;
}

extern "C" const char *service_errstr(int32_t code) {
    static const locale_t c_locale = newlocale(LC_ALL_MASK, "C", nullptr);
    const char *text = strerror_l(code, c_locale);
    return text ? text : "Unknown error";
}
