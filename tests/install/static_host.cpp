// A host of libzel.a that is the worst neighbour: sources and templates of the library's own are compiled
// into it, with the names that the library has for them, and it brings support services of its own.

#include "zel/base/name_index.cpp"
#include "zel/base/owned.h"

#include <zel.hpp>

#include <cstdio>

static bool host_was_asked = false;

extern "C" void *xmalloc(uint32_t size) {
    host_was_asked = true;
    return std::malloc(size);
}

extern "C" const char *service_errstr(int32_t) {
    return "as the host says";
}

int main() {
    const zel::library library;
    const bool read = zel::decode_header("ru", "=?iso-8859-5?Q?=D4=D0?=") == "да";
    const bool host_gave_text = zel::service_error(1) == "as the host says";
    const bool host_gave_memory = host_was_asked;
    const bool own_names_work = zel::hash_name("UTF-8") == zel::hash_name("utf-8") && zel::allocate<char>(1);
    std::printf("%d %d %d %d\n", read, host_gave_text, host_gave_memory, own_names_work);
    return read && host_gave_text && host_gave_memory && own_names_work ? 0 : 1;
}
