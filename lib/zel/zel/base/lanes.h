// Sixteen bytes a step in the vector types of the compilers: SSE2 on x86-64, NEON, or plain words where there
// is neither. A question gives flags, of which the highest bit of each
// byte counts; a comparison sets all bits of a byte, or none, and so gives a mask too.

#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace zel {

inline constexpr std::size_t lane_step = 16;

using signed_bytes = signed char __attribute__((vector_size(lane_step)));
using unsigned_bytes = unsigned char __attribute__((vector_size(lane_step)));
using flag_words = std::uint64_t __attribute__((vector_size(lane_step)));

inline signed_bytes load_bytes(const void *from) {
    signed_bytes bytes;
    std::memcpy(&bytes, from, sizeof bytes);
    return bytes;
}

inline void store_bytes(void *to, signed_bytes bytes) {
    std::memcpy(to, &bytes, sizeof bytes);
}

inline signed_bytes is_high(signed_bytes bytes) {
    return bytes;
}

inline signed_bytes is_byte(signed_bytes bytes, unsigned char value) {
    return reinterpret_cast<signed_bytes>(reinterpret_cast<unsigned_bytes>(bytes) == value);
}

inline signed_bytes is_between(signed_bytes bytes, unsigned char first, unsigned char last) {
    const auto above = reinterpret_cast<unsigned_bytes>(bytes) - first;
    return reinterpret_cast<signed_bytes>(above <= static_cast<unsigned char>(last - first));
}

constexpr bool is_little_endian = std::endian::native == std::endian::little;

// A bit for each byte, that of the first byte lowest. A multiplication moves eight of them side by side.
inline unsigned gathered_bits(signed_bytes flags) {
    constexpr std::uint64_t gather = is_little_endian ? 0x0102040810204080 : 0x8040201008040201;
    const flag_words single = reinterpret_cast<flag_words>(flags) >> 7 & 0x0101010101010101;
    return static_cast<unsigned>(single[0] * gather >> 56 | single[1] * gather >> 56 << 8);
}

// The same where the base of the machine has it as one instruction.
inline unsigned bits_of(signed_bytes flags) {
#ifdef __SSE2__
    return static_cast<unsigned>(_mm_movemask_epi8(reinterpret_cast<__m128i>(flags)));
#else
    return gathered_bits(flags);
#endif
}

inline std::size_t bytes_before(signed_bytes flags) {
    return static_cast<std::size_t>(std::countr_zero(bits_of(flags) | 1U << lane_step));
}

inline bool any(signed_bytes flags) {
    return bits_of(flags) != 0;
}

} // namespace zel
