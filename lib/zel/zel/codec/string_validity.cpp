// The 7-bit test and the repair of double-byte text, both in wide steps inside a length that is known. The
// repair takes blocks of 64 bytes and asks all of a block's bytes at once what they could be; which of those
// that could lead a pair do so then follows from their places in the run of them.
//
// Invariant: a block leaves to the next one whether its last byte leads a pair, and nothing else.

#include "zel/codec/string_validity.h"

#include "zel.h"
#include "zel/base/charset_names.h"
#include "zel/base/input.h"
#include "zel/simd/padded_text.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

namespace zel {
namespace {

struct byte_range {
    unsigned char first, last;
};

constexpr byte_range ascii_bytes = {0x00, 0x7F};

// What is neither a lead nor single is broken, unless it is a trail.
struct double_byte_family {
    byte_range leads[2];
    byte_range singles[2];
    bool trail_has_high_bit; // otherwise any byte is a trail, and so is a missing one
};

constexpr double_byte_family euc = {{{0x80, 0xFF}, {0x80, 0xFF}}, {ascii_bytes, ascii_bytes}, true};
constexpr double_byte_family sjis = {{{0x81, 0x9F}, {0xE0, 0xFC}}, {ascii_bytes, {0xA0, 0xDF}}, false};
constexpr double_byte_family big5 = {{{0xA1, 0xF9}, {0xA1, 0xF9}}, {ascii_bytes, ascii_bytes}, false};

const double_byte_family *family_of(const char *charset) {
    for (const char *const name : {ianaEUCKR, ianaEUCJP, ianaGB2312, ianaKSC5601})
        if (same_name(charset, name))
            return &euc;
    if (same_name(charset, ianaSHIFTJIS))
        return &sjis;
    return same_name(charset, ianaBIG5) ? &big5 : nullptr;
}

bitmask64 within(const block64 &block, const byte_range (&ranges)[2]) {
    return mask_of(block, [&](vector_bytes bytes) {
        return are_between(bytes, ranges[0].first, ranges[0].last) |
               are_between(bytes, ranges[1].first, ranges[1].last);
    });
}

void replace(char *text, bitmask64 places) {
    for (; places; places &= places - 1)
        text[std::countr_zero(places)] = '?';
}

// The block holds what the text has from here on. Gives whether its last byte leads a pair.
bool repair_block(const double_byte_family &family, const block64 &block, char *text, bool lead_before) {
    if (!lead_before && !has_any(block, are_high))
        return false;
    const bitmask64 carried = lead_before ? 1 : 0;
    const bitmask64 candidates = within(block, family.leads);
    const bitmask64 leads = lead_bytes_among(candidates & ~carried);
    const bitmask64 trails = leads << 1 | carried;
    replace(text, ~(within(block, family.singles) | candidates | trails));
    if (family.trail_has_high_bit)
        replace(text - 1, trails & ~mask_of(block, are_high));
    return leads >> (block_size - 1) != 0;
}

// Zeros behind the text's end stand for its terminator, which is no trail with a high bit.
void repair(const double_byte_family &family, char *text, std::size_t len) {
    bool lead_before = false;
    for (; len >= block_size; text += block_size, len -= block_size)
        lead_before = repair_block(family, load_block(text), text, lead_before);
    repair_block(family, load_rest({text, len}), text, lead_before);
}

} // namespace

bool is7bit(std::string_view text) {
    if (text.size() < vector_size)
        return std::none_of(text.begin(), text.end(), has_high_bit);
    const vector_bytes last = load_vector(text.end() - vector_size);
    for (; text.size() >= block_size; text.remove_prefix(block_size))
        if (has_any(load_block(text.data()), are_high))
            return false;
    for (; text.size() >= vector_size; text.remove_prefix(vector_size))
        if (any(are_high(load_vector(text.data()))))
            return false;
    return !any(are_high(last));
}

// Piece by piece, so that little is read of a text that shows a high byte at once.
bool is7bitstring(const char *text) {
    constexpr std::size_t piece = 1024;
    for (std::size_t len = piece; text && len == piece; text += len) {
        len = strnlen(text, piece);
        if (!is7bit({text, len}))
            return false;
    }
    return true;
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
