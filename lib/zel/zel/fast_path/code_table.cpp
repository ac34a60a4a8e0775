// ICU is asked for each character by itself, in both directions, with callbacks that stop at whatever is not
// an exact mapping; in ISO-2022-JP each character comes with the escape sequences around it.
//
// Invariant: only what ICU gives without error, and one for one, gets into a table.

#include "zel/fast_path/code_table.h"

#include "zel/base/icu_converter.h"
#include "zel/transcode/runs.h"

#include <unicode/ucnv_err.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <string_view>

namespace zel {
namespace {

// A charset whose characters ICU is asked for one by one. What surrounds them in a text of states comes with
// them.
struct probe {
    icu_converter cnv;
    std::string_view before; // bytes that enter the set of two-byte characters
    std::string_view behind; // bytes that leave it
};

probe open_probe(const char *charset) {
    UErrorCode status = U_ZERO_ERROR;
    probe opened = {icu_converter(ucnv_open(charset, &status)), "", ""};
    if (U_FAILURE(status))
        return {};
    if (kind_of(opened.cnv.get()) == charset_kind::iso2022jp) {
        opened.before = enter_kanji;
        opened.behind = leave_kanji;
    }
    ucnv_setToUCallBack(opened.cnv.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    ucnv_setFromUCallBack(opened.cnv.get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    return U_FAILURE(status) ? probe{} : std::move(opened);
}

constexpr unsigned first_lead_byte = 0x80;

constexpr std::int32_t longest_probe = 16;

// The character that the bytes are, where they are just one, of the Basic Multilingual Plane, and no NUL.
UChar character_of(const probe &from, std::string_view bytes, UErrorCode &status) {
    UChar units[longest_probe];
    status = U_ZERO_ERROR;
    const std::int32_t length = ucnv_toUChars(from.cnv.get(), units, longest_probe, bytes.data(),
                                              static_cast<std::int32_t>(bytes.size()), &status);
    return U_SUCCESS(status) && length == 1 && !U16_IS_SURROGATE(units[0]) ? units[0] : UChar{0};
}

UChar pair_character(const probe &from, unsigned char lead, unsigned char trail) {
    char bytes[longest_probe];
    std::size_t length = from.before.copy(bytes, from.before.size());
    bytes[length++] = static_cast<char>(lead);
    bytes[length++] = static_cast<char>(trail);
    length += from.behind.copy(bytes + length, from.behind.size());
    UErrorCode status;
    return character_of(from, {bytes, length}, status);
}

charset_code code_of(const probe &to, UChar character) {
    char bytes[longest_probe];
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t length = ucnv_fromUChars(to.cnv.get(), bytes, longest_probe, &character, 1, &status);
    std::string_view code(bytes, U_SUCCESS(status) ? static_cast<std::size_t>(length) : 0);
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(code[i]); };
    if (code.size() == 1 && (character < 0x80 || to.before.empty()))
        return byte(0);
    if (code.size() != to.before.size() + 2 + to.behind.size() || !code.starts_with(to.before))
        return 0;
    code.remove_prefix(to.before.size());
    return byte(1) == 0 ? charset_code{0} : static_cast<charset_code>(byte(0) | byte(1) << 8);
}

utf8_character in_utf8(UChar character) {
    const auto continuation = [](unsigned bits) { return static_cast<unsigned char>(0x80 | (bits & 0x3F)); };
    if (character == 0)
        return {};
    if (character < 0x80)
        return {static_cast<unsigned char>(character)};
    if (character < 0x800)
        return {static_cast<unsigned char>(0xC0 | character >> 6), continuation(character)};
    return {static_cast<unsigned char>(0xE0 | character >> 12), continuation(character >> 6U),
            continuation(character)};
}

void take_pairs(code_table &table, const probe &from, unsigned char lead) {
    utf8_character *row = &table.pairs[static_cast<std::size_t>(lead) << 8];
    const bool seven_bit = !from.before.empty();
    for (unsigned trail = seven_bit ? 0x21 : 0x30; trail < (seven_bit ? 0x7F : 0xFF); ++trail)
        row[trail] = in_utf8(pair_character(from, lead, static_cast<unsigned char>(trail)));
}

void put_single(code_table &table, unsigned byte, const utf8_character &character) {
    const auto length =
        static_cast<std::size_t>(std::find(character.begin(), character.end(), 0) - character.begin());
    table.singles[byte] = character;
    table.lengths[byte] = static_cast<unsigned char>(length);
    if (length == (byte < 0x80 ? 1 : 2))
        table.slots[byte] = {character[0], character[1]};
}

void take_bytes(code_table &table, const probe &from) {
    for (unsigned value = 1; value < 256; ++value) {
        const auto byte = static_cast<char>(value);
        UErrorCode status;
        const UChar character = character_of(from, {&byte, 1}, status);
        put_single(table, value, in_utf8(character));
        table.leads[value] = from.before.empty()
                                 ? status == U_TRUNCATED_CHAR_FOUND && value >= first_lead_byte
                                 : value >= 0x21 && value < 0x7F;
        if (table.leads[value]) {
            take_pairs(table, from, static_cast<unsigned char>(value));
        }
    }
}

void take_codes(code_table &table, const probe &to) {
    for (unsigned value = 1; value < 0x10000; ++value)
        if (!U16_IS_SURROGATE(value))
            table.codes[value] = code_of(to, static_cast<UChar>(value));
}

bool keeps(const code_table &table, unsigned char byte) {
    return table.lengths[byte] == 1 && table.singles[byte][0] == byte && table.codes[byte] == byte;
}

// A NUL stands for itself in every charset that all other ASCII does.
bool keeps_ascii(const code_table &table, unsigned first, unsigned last) {
    for (unsigned byte = first; byte <= last; ++byte)
        if (!keeps(table, static_cast<unsigned char>(byte)))
            return false;
    return true;
}

// The end of Latin-1 that a charset shares, if all of the letters are in it.
unsigned char first_latin1(const code_table &table) {
    constexpr unsigned first_letter = 0xC0;
    unsigned first = 0x100;
    while (first > 0x80 && table.codes[first - 1] == first - 1)
        --first;
    return static_cast<unsigned char>(first <= first_letter ? first : 0);
}

template <class Table>
heap<Table> new_table() {
    return heap<Table>(static_cast<Table *>(std::calloc(1, sizeof(Table))));
}

} // namespace

// In the last four no byte changes how the next one is read, and no characters become something else
// together, as ICU knows them in EBCDIC alone.
charset_kind kind_of(const UConverter *cnv) {
    UErrorCode status = U_ZERO_ERROR;
    switch (ucnv_getType(cnv)) {
    case UCNV_UTF8:
        return charset_kind::utf8;
    case UCNV_ISO_2022:
        return std::string_view(ucnv_getName(cnv, &status)) == "ISO_2022,locale=ja,version=0"
                   ? charset_kind::iso2022jp
                   : charset_kind::other;
    case UCNV_SBCS:
    case UCNV_MBCS:
    case UCNV_LATIN_1:
    case UCNV_US_ASCII:
        return ucnv_getMaxCharSize(cnv) == 1 ? charset_kind::single_byte : charset_kind::multi_byte;
    default:
        return charset_kind::other;
    }
}

heap<code_table> build_code_table(const char *charset) {
    const probe asked = open_probe(charset);
    if (!asked.cnv)
        return nullptr;
    heap<code_table> table = new_table<code_table>();
    if (!table)
        return nullptr;
    take_bytes(*table, asked);
    take_codes(*table, asked);
    table->first_latin1 = first_latin1(*table);
    table->lengths[0] = 1; // NUL is kept where plain text is
    const bool keeps_text = keeps_ascii(*table, 0x01, 0x0D) && keeps_ascii(*table, ' ', '~');
    return keeps_text ? std::move(table) : nullptr;
}

heap<byte_table> build_byte_table(const char *from_charset, const char *to_charset) {
    const probe from = open_probe(from_charset), to = open_probe(to_charset);
    if (!from.cnv || !to.cnv)
        return nullptr;
    heap<byte_table> table = new_table<byte_table>();
    if (!table)
        return nullptr;
    for (unsigned value = 1; value < 256; ++value) {
        const auto byte = static_cast<char>(value);
        UErrorCode status;
        const UChar character = character_of(from, {&byte, 1}, status);
        (*table)[value] = static_cast<unsigned char>(character ? code_of(to, character) : 0);
    }
    return table;
}

} // namespace zel
