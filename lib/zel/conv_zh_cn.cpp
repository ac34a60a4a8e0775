// HZ to GB 2312 (RFC 1843) by a walk of two states, and Big5 and GB 2312 by tables of characters, in which a
// cell is found by direct index. Both tables share one walk and differ in how a pair gives its index.
//
// Invariant: an index is tested against its table before the table is read.

#include "conv_zh_cn.h"

#include "conv.h"
#include "zel.h"
#include "zel/base/frame.h"

#include <cstddef>

namespace zel {
namespace {

// True if what stands next only told how to read on.
bool take_hz_escape(input &from, bool &gb) {
    if (peek(from) != '~')
        return false;
    const unsigned char second = peek(from, 1);
    const unsigned char shift = gb ? '}' : '{';
    if (second == shift)
        gb = !gb;
    else if (gb || second != '\n')
        return false;
    from.at += 2;
    return true;
}

bool put_hz_character(input &from, bool gb, output &to, bool pass_8bit) {
    const unsigned char byte = take(from);
    if (gb)
        return put_high_pair(to, byte, take(from));
    if (byte == '~' && peek(from) == '~')
        take(from);
    return put(to, as_7bit(byte, pass_8bit));
}

constexpr unsigned char first_lead = 0xA1;
constexpr std::string_view no_counterpart = "??";

template <std::size_t Cells>
std::string_view counterpart(const unsigned char (&table)[Cells][2], int index) {
    if (index < 0 || index >= static_cast<int>(Cells) || table[index][0] == 0)
        return no_counterpart;
    return {reinterpret_cast<const char *>(table[index]), 2};
}

// A row has columns for the trails from 0x40 to 0x7E, then for those from 0xA1 to 0xFE.
std::string_view gb_of_big5(unsigned char lead, unsigned char trail) {
    const int row = (lead - first_lead) * 158;
    if (trail >= 0x40 && trail <= 0x7E)
        return counterpart(B2G, row + trail - 0x40);
    if (trail >= 0xA1 && trail <= 0xFE)
        return counterpart(B2G, row + trail - 0x62);
    return no_counterpart;
}

// The trail is not tested: one below 0xA1 reaches into the rows before.
std::string_view big5_of_gb(unsigned char lead, unsigned char trail) {
    return counterpart(G2B, (lead - first_lead) * 94 + trail - 0xA1);
}

template <std::string_view (&counterpart_of)(unsigned char, unsigned char)>
void map_characters(input from, output &to) {
    while (!ended(from)) {
        const unsigned char byte = take(from);
        if (byte < first_lead ? !put(to, byte) : !put(to, counterpart_of(byte, take(from))))
            return;
    }
}

} // namespace

void convert_hz_to_gb(input from, output &to) {
    bool gb = false;
    const bool pass_8bit = passes_8bit();
    while (!ended(from))
        if (!take_hz_escape(from, gb) && !put_hz_character(from, gb, to, pass_8bit))
            return;
}

void convert_big5_to_gb(input from, output &to) {
    map_characters<gb_of_big5>(from, to);
}

void convert_gb_to_big5(input from, output &to) {
    map_characters<big5_of_gb>(from, to);
}

} // namespace zel

int32_t hz2gb(const char *from_buf, int32_t from_len, char *to_buf, int32_t to_size) {
    return zel::convert_for_caller(zel::convert_hz_to_gb, from_buf, from_len, to_buf, to_size);
}

int32_t big2gb(const char *from_buf, int32_t from_len, char *to_buf, int32_t to_size) {
    return zel::convert_for_caller(zel::convert_big5_to_gb, from_buf, from_len, to_buf, to_size);
}

int32_t gb2big5(const char *from_buf, int32_t from_len, char *to_buf, int32_t to_size) {
    return zel::convert_for_caller(zel::convert_gb_to_big5, from_buf, from_len, to_buf, to_size);
}
