// Ownership is written at the type: what must be released is held by a unique_ptr whose deleter is the C
// function that releases it, so every path does. The aliases for ICU's objects, converter records and held
// locks stand beside the modules that know those functions.
//
// Invariant: nothing else in the library calls free, but ZEL_Free for the host.

#pragma once

#include "qorm.h"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <type_traits>

namespace zel {

template <auto F>
using release = std::integral_constant<decltype(F), F>;

template <class T, auto F>
using owned = std::unique_ptr<T, release<F>>;

template <class T>
using heap = owned<T, &std::free>;

using heap_string = heap<char>;

// From the host's allocator; null for a count that its 32-bit argument cannot hold.
template <class T>
heap<T> allocate(std::uint64_t count) {
    if (count > UINT32_MAX / sizeof(T))
        return nullptr;
    return heap<T>(static_cast<T *>(xmalloc(static_cast<std::uint32_t>(count * sizeof(T)))));
}

} // namespace zel
