// The 7-bit test, in wide steps inside the length that strlen found, and the repair of double-byte
// text, driven by one table per family of charsets that says of each byte whether it stands alone, leads a
// pair, or is none of these.

#include "zel/base/string_validity.h"

#include "zel.h"
#include "zel/base/charset_names.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace zel {
namespace {

enum class byte_kind : unsigned char { single, lead, broken };

struct double_byte_family {
    std::array<byte_kind, 256> kinds;
    bool trail_has_high_bit; // otherwise any byte is a trail, and so is a missing one
};

constexpr bool between(unsigned byte, unsigned first, unsigned last) {
    return byte >= first && byte <= last;
}

constexpr byte_kind euc_kind(unsigned byte) {
    return byte < 0x80 ? byte_kind::single : byte_kind::lead;
}

constexpr byte_kind shift_jis_kind(unsigned byte) {
    if (between(byte, 0x81, 0x9F) || between(byte, 0xE0, 0xFC))
        return byte_kind::lead;
    const bool half_width_katakana = between(byte, 0xA0, 0xDF);
    return byte < 0x80 || half_width_katakana ? byte_kind::single : byte_kind::broken;
}

constexpr byte_kind big5_kind(unsigned byte) {
    if (between(byte, 0xA1, 0xF9))
        return byte_kind::lead;
    return byte < 0x80 ? byte_kind::single : byte_kind::broken;
}

consteval std::array<byte_kind, 256> kinds_by(byte_kind (*rule)(unsigned)) {
    std::array<byte_kind, 256> kinds{};
    for (unsigned byte = 0; byte < kinds.size(); ++byte)
        kinds[byte] = rule(byte);
    return kinds;
}

constexpr double_byte_family euc{kinds_by(euc_kind), true};
constexpr double_byte_family shift_jis{kinds_by(shift_jis_kind), false};
constexpr double_byte_family big5{kinds_by(big5_kind), false};

const double_byte_family *family_of(const char *charset) {
    for (const char *const name : {ianaEUCKR, ianaEUCJP, ianaGB2312, ianaKSC5601})
        if (same_name(charset, name))
            return &euc;
    if (same_name(charset, ianaSHIFTJIS))
        return &shift_jis;
    return same_name(charset, ianaBIG5) ? &big5 : nullptr;
}

bool has_high_bit(char byte) {
    return (static_cast<unsigned char>(byte) & 0x80) != 0;
}

void repair(const double_byte_family &family, char *text, std::size_t len) {
    for (std::size_t at = 0; at < len; ++at) {
        const byte_kind kind = family.kinds[static_cast<unsigned char>(text[at])];
        if (kind == byte_kind::single)
            continue;
        const std::size_t trail = at + 1;
        const bool misses_trail = family.trail_has_high_bit && (trail == len || !has_high_bit(text[trail]));
        if (kind == byte_kind::broken || misses_trail)
            text[at] = '?';
        if (kind == byte_kind::lead)
            at = trail;
    }
}

} // namespace

bool is7bit(std::string_view text) {
    using block = std::array<std::uint64_t, 4>;
    constexpr std::uint64_t high_bits = 0x8080808080808080;
    for (block words; text.size() >= sizeof words; text.remove_prefix(sizeof words)) {
        std::memcpy(words.data(), text.data(), sizeof words);
        if ((words[0] | words[1] | words[2] | words[3]) & high_bits)
            return false;
    }
    return std::none_of(text.begin(), text.end(), has_high_bit);
}

bool is7bitstring(const char *text) {
    return !text || is7bit(text);
}

void checkstringvalidity(const char *charset, char *text) {
    if (const double_byte_family *family = family_of(charset))
        repair(*family, text, std::strlen(text));
}

void checkstringvalidity(const char *charset, char *text, std::size_t len) {
    if (const double_byte_family *family = family_of(charset))
        repair(*family, text, strnlen(text, len));
}

} // namespace zel

int32_t ZEL_IsASCIIString(const char *text) {
    return zel::is7bitstring(text);
}

void ZEL_CheckStringValidity(const char *charset, char *text) {
    zel::checkstringvalidity(charset, text);
}
