// Which instructions a piece of code is compiled for. A template of this parameter has a portable form, and
// may have another one for newer processors of a kind, which the caller asks for at run time.
//
// Invariant: both forms give the same.

#pragma once

#ifdef __x86_64__
#include <immintrin.h>
#endif

namespace zel {

// The instructions that a piece of code is compiled for: those that every processor of the kind has, or the
// ones that are asked for at run time.
enum class instructions { base, avx2 };

#ifdef __x86_64__
#ifdef __clang__
#define ZEL_AVX2 [[gnu::target("avx2,bmi,bmi2,popcnt")]]
#else // g++ would merge two loads of 16 bytes into one, which waits where the two have just been stored apart
#define ZEL_AVX2 [[gnu::target("avx2,bmi,bmi2,popcnt,prefer-vector-width=128")]]
#endif
inline bool has_avx2() {
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") &&
           __builtin_cpu_supports("bmi2") && __builtin_cpu_supports("popcnt");
}
#else
#define ZEL_AVX2
inline bool has_avx2() {
    return false;
}
#endif

} // namespace zel
