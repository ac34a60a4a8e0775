// Encoding takes groups of three bytes: two reads of a table of twelve bits each, or eight groups in
// registers where the processor has AVX2. The last, padded group and what stands between lines is put by
// hand. Decoding reads four characters at a time by a table in which what is foreign counts as 0.
//
// Invariant: the fast code writes what the groups would have given, and the tests hold the two together.

#include "zel/codec/base64.h"

#include "zel.h"

#include <array>
#include <cstring>

#ifdef __x86_64__
#include <immintrin.h>
#endif

namespace zel {
namespace {

constexpr std::size_t group = 3;

using character_pair = std::array<char, 2>;

constexpr auto character_pairs = [] {
    std::array<character_pair, 1 << 12> all = {};
    for (unsigned bits = 0; bits < all.size(); ++bits)
        all[bits] = {basis_64[bits >> 6], basis_64[bits & 0x3F]};
    return all;
}();

std::size_t left(const base64_cursors &at, const char *end) {
    return static_cast<std::size_t>(end - at.from);
}

inline void encode_group(base64_cursors &at) {
    const auto *bytes = reinterpret_cast<const unsigned char *>(at.from);
    const unsigned bits = static_cast<unsigned>(bytes[0] << 16 | bytes[1] << 8 | bytes[2]);
    std::memcpy(at.to, &character_pairs[bits >> 12], sizeof(character_pair));
    std::memcpy(at.to + sizeof(character_pair), &character_pairs[bits & 0xFFF], sizeof(character_pair));
    at.from += group;
    at.to += group_characters;
}

void put_line_break(base64_cursors &at) {
    std::memcpy(at.to, "\r\n", 2);
    at.to += 2;
}

} // namespace

base64_cursors encode_groups(base64_cursors at, const char *end) {
    while (left(at, end) >= group)
        encode_group(at);
    return at;
}

base64_cursors encode_lines_by_groups(base64_cursors at, const char *end) {
    while (left(at, end) >= base64_line_bytes) {
        at = encode_groups(at, at.from + base64_line_bytes);
        put_line_break(at);
    }
    return at;
}

#ifdef __x86_64__
namespace {

constexpr std::size_t step_bytes = 8 * group;
constexpr std::size_t step_characters = 8 * group_characters;

[[gnu::target("avx2")]] inline __m128i load_half(const char *from) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(from));
}

// The two loads overlap, so that a step reads its 24 bytes and no other. A group of the bytes a, b, c is laid
// out as b, a, c, b: two numbers of 16 bits, the first with the first two sixes in it, the other with the
// rest.
[[gnu::target("avx2")]] inline __m256i load_groups(const char *from) {
    const __m256i halves = _mm256_set_m128i(load_half(from + 8), load_half(from));
    const __m256i layout = _mm256_setr_epi8(1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10, 5, 4, 6, 5, 8,
                                            7, 9, 8, 11, 10, 12, 11, 14, 13, 15, 14);
    return _mm256_shuffle_epi8(halves, layout);
}

// A multiplication is a shift of its own in each number: to the right by the high half of the product, to the
// left by the low half.
[[gnu::target("avx2")]] inline __m256i sixes_of(__m256i groups) {
    const __m256i first_and_third = _mm256_mulhi_epu16(
        _mm256_and_si256(groups, _mm256_set1_epi32(0x0FC0FC00)), _mm256_set1_epi32(0x04000040));
    const __m256i second_and_fourth = _mm256_mullo_epi16(
        _mm256_and_si256(groups, _mm256_set1_epi32(0x003F03F0)), _mm256_set1_epi32(0x01000010));
    return _mm256_or_si256(first_and_third, second_and_fourth);
}

// What is added to a six to make it a character depends on its range alone, and the range is found by
// subtraction: all small letters in row 0, each digit and sign in one of its own, the capitals moved to
// row 13.
[[gnu::target("avx2")]] inline __m256i characters_of(__m256i sixes) {
    const __m256i offsets = _mm256_broadcastsi128_si256(
        _mm_setr_epi8('a' - 26, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52,
                      '0' - 52, '0' - 52, '0' - 52, '+' - 62, '/' - 63, 'A', 0, 0));
    const __m256i behind_letters = _mm256_subs_epu8(sixes, _mm256_set1_epi8(51));
    const __m256i capitals = _mm256_cmpgt_epi8(_mm256_set1_epi8(26), sixes);
    const __m256i row = _mm256_or_si256(behind_letters, _mm256_and_si256(capitals, _mm256_set1_epi8(13)));
    return _mm256_add_epi8(sixes, _mm256_shuffle_epi8(offsets, row));
}

[[gnu::target("avx2")]] inline void encode_step(base64_cursors &at) {
    _mm256_storeu_si256(reinterpret_cast<__m256i *>(at.to), characters_of(sixes_of(load_groups(at.from))));
    at.from += step_bytes;
    at.to += step_characters;
}

[[gnu::target("avx2")]] base64_cursors encode_lines_by_avx2(base64_cursors at, const char *end) {
    while (left(at, end) >= base64_line_bytes) {
        encode_step(at);
        encode_step(at);
        encode_group(at);
        put_line_break(at);
    }
    while (left(at, end) >= step_bytes)
        encode_step(at);
    return at;
}

} // namespace

base64_encoder *wide_line_encoder() {
    return __builtin_cpu_supports("avx2") ? encode_lines_by_avx2 : nullptr;
}

#else

base64_encoder *wide_line_encoder() {
    return nullptr;
}

#endif

base64_cursors encode_lines(base64_cursors at, const char *end) {
    base64_encoder *wide = wide_line_encoder();
    return wide ? wide(at, end) : encode_lines_by_groups(at, end);
}

namespace {

// The one or two bytes behind the last whole group. The padding goes by their number alone.
char *encodeChunk(std::string_view from, char *to) {
    const char padded[] = {from[0], from.size() > 1 ? from[1] : '\0', '\0'};
    to = encode_groups({padded, to}, std::end(padded)).to;
    to[-1] = '=';
    if (from.size() == 1)
        to[-2] = '=';
    return to;
}

char *encode_base64(base64_cursors at, const char *end) {
    at = encode_groups(at, end);
    return at.from == end ? at.to : encodeChunk({at.from, end}, at.to);
}

constexpr unsigned char byte_of(char character) {
    return static_cast<unsigned char>(character);
}

constexpr auto base64_values = [] {
    std::array<unsigned char, 256> values = {}; // what is not in the alphabet counts as 0 and takes its place
    for (unsigned value = 0; value < basis_64.size(); ++value)
        values[byte_of(basis_64[value])] = static_cast<unsigned char>(value);
    return values;
}();

static_assert(base64_values['A'] == 0 && base64_values['/'] == 63 && base64_values['='] == 0);

std::uint32_t bits_of_group(const char *characters) {
    const auto value = [=](int place) { return std::uint32_t{base64_values[byte_of(characters[place])]}; };
    return value(0) << 18 | value(1) << 12 | value(2) << 6 | value(3);
}

void store_group(std::uint32_t bits, char *to) {
    to[0] = static_cast<char>(bits >> 16);
    to[1] = static_cast<char>(bits >> 8);
    to[2] = static_cast<char>(bits);
}

constexpr bool holds_zero(std::uint32_t bits) {
    return ((bits - 0x010101) & ~bits & 0x808080) != 0;
}

} // namespace

bool put_base64(output &to, std::string_view from) {
    const auto size = static_cast<std::size_t>(base64_size(from.size()));
    if (!fits(to, size))
        return false;
    if (to.start)
        encode_base64({from.begin(), to.start + to.length}, from.end());
    to.length += size;
    return true;
}

// Groups go on behind a padded group, and up to three characters left over at the end give nothing.
std::size_t decode_b(std::string_view from, char *to) {
    char *const start = to;
    for (; from.size() >= group_characters; from.remove_prefix(group_characters)) {
        const std::uint32_t bits = bits_of_group(from.data());
        const std::size_t bytes = from[2] == '=' ? 1 : from[3] == '=' ? 2 : 3;
        store_group(bits, to);
        const std::size_t text = holds_zero(bits) ? strnlen(to, bytes) : bytes;
        to += text;
        if (text < bytes)
            break;
    }
    return static_cast<std::size_t>(to - start);
}

} // namespace zel

using namespace zel;

int32_t ZEL_ApplyBase64Encoding(const char *from_buf, int32_t from_len, char *to_buf, int32_t to_size) {
    std::string_view from(from_buf, from_len > 0 ? static_cast<std::size_t>(from_len) : 0);
    if (to_size < 0) {
        const std::uint64_t need = base64_size(from.size()) + from.size() / base64_line_bytes * 2 + 1;
        return saturate(std::max<std::uint64_t>(from.size() * 2, need));
    }
    char *const to = encode_base64(encode_lines({from.begin(), to_buf}, from.end()), from.end());
    *to = '\0';
    return saturate(static_cast<std::uint64_t>(to - to_buf));
}
