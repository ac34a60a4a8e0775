// The 7-bit test and the repair of double-byte text, both in wide steps inside a length that is known. The
// repair takes blocks of 64 bytes and asks all of a block's bytes at once what they could be; which of those
// that could lead a pair do so then follows from their places in the run of them.
//
// Invariant: a block leaves to the next one whether its last byte leads a pair, and nothing else.

#include "zel/base/string_validity.h"

#include "zel.h"
#include "zel/base/byte_block.h"
#include "zel/base/charset_names.h"
#include "zel/base/input.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

namespace zel {
namespace {

struct byte_range {
    unsigned char first, last;
};

constexpr byte_range seven_bit = {0x00, 0x7F};

// What is neither a lead nor single is broken, unless it is a trail.
struct double_byte_family {
    byte_range leads[2];
    byte_range singles[2];
    bool trail_has_high_bit; // otherwise any byte is a trail, and so is a missing one
};

constexpr double_byte_family euc = {{{0x80, 0xFF}, {0x80, 0xFF}}, {seven_bit, seven_bit}, true};
constexpr double_byte_family shift_jis = {{{0x81, 0x9F}, {0xE0, 0xFC}}, {seven_bit, {0xA0, 0xDF}}, false};
constexpr double_byte_family big5 = {{{0xA1, 0xF9}, {0xA1, 0xF9}}, {seven_bit, seven_bit}, false};

const double_byte_family *family_of(const char *charset) {
    for (const char *const name : {ianaEUCKR, ianaEUCJP, ianaGB2312, ianaKSC5601})
        if (same_name(charset, name))
            return &euc;
    if (same_name(charset, ianaSHIFTJIS))
        return &shift_jis;
    return same_name(charset, ianaBIG5) ? &big5 : nullptr;
}

bit_per_byte within(const byte_block &block, const byte_range (&ranges)[2]) {
    return ask(block, [&](signed_bytes bytes) {
        return is_between(bytes, ranges[0].first, ranges[0].last) |
               is_between(bytes, ranges[1].first, ranges[1].last);
    });
}

// A run of bytes that could lead begins with one that does, and every second one does: those on even places
// in a run that begins on one, the others in all other runs.
bit_per_byte leads_among(bit_per_byte candidates) {
    constexpr bit_per_byte even_places = 0x5555555555555555;
    const bit_per_byte begins = candidates & ~(candidates << 1);
    const bit_per_byte even_runs = candidates & ~(candidates + (begins & even_places));
    return (even_runs & even_places) | (candidates & ~even_runs & ~even_places);
}

void replace(char *text, bit_per_byte places) {
    for (; places; places &= places - 1)
        text[std::countr_zero(places)] = '?';
}

// The block holds what the text has from here on. Gives whether its last byte leads a pair.
bool repair_block(const double_byte_family &family, const byte_block &block, char *text, bool lead_before) {
    if (!lead_before && !has_any(block, is_high))
        return false;
    const bit_per_byte carried = lead_before ? 1 : 0;
    const bit_per_byte candidates = within(block, family.leads);
    const bit_per_byte leads = leads_among(candidates & ~carried);
    const bit_per_byte trails = leads << 1 | carried;
    replace(text, ~(within(block, family.singles) | candidates | trails));
    if (family.trail_has_high_bit)
        replace(text - 1, trails & ~ask(block, is_high));
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
    if (text.size() < lane_step)
        return std::none_of(text.begin(), text.end(), has_high_bit);
    const signed_bytes last = load_bytes(text.end() - lane_step);
    for (; text.size() >= block_size; text.remove_prefix(block_size))
        if (has_any(load_block(text.data()), is_high))
            return false;
    for (; text.size() >= lane_step; text.remove_prefix(lane_step))
        if (any(is_high(load_bytes(text.data()))))
            return false;
    return !any(is_high(last));
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
