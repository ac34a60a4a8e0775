// The hash takes a name by words of eight bytes, of which the last has fewer or none; no two names have the
// same words. Each word is multiplied by two secret odd numbers, with the halves exchanged in between: the
// first product moves a difference up, and the second spreads it. The index goes by the high bits, which
// depend on all others.

#include "zel/base/name_index.h"

#include <sys/auxv.h>

#include <bit>

namespace zel {
namespace {

using hash_word = std::uint64_t;

struct secret_factors {
    hash_word first, second;
};

// Linux gives each process 16 random bytes, so that nothing can fail here.
secret_factors factors_of_process() {
    secret_factors factors;
    std::memcpy(&factors, reinterpret_cast<const void *>(getauxval(AT_RANDOM)), sizeof factors);
    return {factors.first | 1, factors.second | 1};
}

const secret_factors secret = factors_of_process();

// Of letters alone: other bytes that counted as one would let names collide.
constexpr std::array<unsigned char, 256> small_letters = [] {
    std::array<unsigned char, 256> letters = {};
    for (unsigned byte = 0; byte < letters.size(); ++byte)
        letters[byte] = static_cast<unsigned char>(byte >= 'A' && byte <= 'Z' ? byte - 'A' + 'a' : byte);
    return letters;
}();

hash_word mix(hash_word hash, hash_word bytes) {
    return std::rotl((hash ^ bytes) * secret.first, 32) * secret.second;
}

hash_word take_name(hash_word hash, const char *name) {
    for (;;) {
        hash_word bytes = 0;
        for (std::size_t i = 0; i < sizeof bytes; ++i, ++name) {
            if (!*name)
                return mix(hash, bytes);
            bytes = bytes << 8 | small_letters[static_cast<unsigned char>(*name)];
        }
        hash = mix(hash, bytes);
    }
}

} // namespace

std::uint64_t hash_name(const char *name) {
    return take_name(secret.second, name);
}

std::uint64_t hash_names(const char *first, const char *second) {
    return take_name(hash_name(first), second);
}

} // namespace zel
