// See canonical_order.h. A few wide ranges of characters are known to be without marks, and a few charsets. A
// long run of marks is found by a look at every 256th unit, so that ordinary text is not read for it.

#include "zel/locale/canonical_order.h"

#include "zel/base/charset_names.h"

#include <unicode/uchar.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <iterator>

namespace zel {
namespace {

struct unit_range {
    char16_t first, last;
};

// These lie around the marks of the scripts that they hold, and hold no surrogates.
constexpr unit_range without_marks[] = {{0x0000, 0x02FF}, {0x0370, 0x0482}, {0x1E00, 0x20CF},
                                        {0x3000, 0x3029}, {0x3030, 0x3098}, {0x309B, 0xA66E},
                                        {0xAC00, 0xD7A3}, {0xFF00, 0xFFEF}};

// All ranges without a branch, so that compilers take many units at once.
constexpr char16_t is_within_none(char16_t unit) {
    char16_t outside = 1;
    for (const auto [first, last] : without_marks)
        outside &=
            static_cast<char16_t>(static_cast<char16_t>(unit - first) > static_cast<char16_t>(last - first));
    return outside;
}

constexpr const char *charsets_without_marks[] = {
    ianaUSASCII,   ianaISO8859_1, ianaISO8859_2,  ianaISO8859_4,   ianaISO8859_5,
    ianaISO8859_7, ianaISO8859_9, ianaISO8859_15, ianaWINDOWS1252, ianaSHIFTJIS,
    ianaEUCJP,     ianaEUCKR,     ianaGB2312,     ianaBIG5};

constexpr std::int32_t longest_mark_run = 256; // marks
constexpr std::int32_t longest_part = 30;      // of a run that is broken
constexpr UChar combining_grapheme_joiner = 0x034F;

UChar32 take_next(const utf16_text &text, std::int32_t &at) {
    UChar32 character;
    U16_NEXT(text.units.get(), at, text.length, character);
    return character;
}

UChar32 take_previous(const utf16_text &text, std::int32_t &at) {
    UChar32 character;
    U16_PREV(text.units.get(), 0, at, character);
    return character;
}

// U+0F73, U+0F75 and U+0F81 have no combining class of their own, but decompose into marks alone.
bool is_mark(UChar32 character) {
    return u_getIntPropertyValue(character, UCHAR_LEAD_CANONICAL_COMBINING_CLASS) != 0;
}

// Goes behind the marks that stand next, of which there may be none, and gives their number.
std::int32_t skip_marks(const utf16_text &text, std::int32_t &at, std::int32_t most) {
    std::int32_t marks = 0;
    std::int32_t next = at;
    while (marks < most && next < text.length && is_mark(take_next(text, next))) {
        at = next;
        ++marks;
    }
    return marks;
}

bool is_in_long_run(const utf16_text &text, std::int32_t place) {
    if (!is_within_none(text.units.get()[place]))
        return false;
    U16_SET_CP_START(text.units.get(), 0, place);
    std::int32_t behind = place;
    std::int32_t marks = skip_marks(text, behind, longest_mark_run + 1);
    if (marks == 0)
        return false;
    while (marks <= longest_mark_run && place > 0 && is_mark(take_previous(text, place)))
        ++marks;
    return marks > longest_mark_run;
}

// A mark has a unit at least, so no such run lies between two of the places.
bool holds_long_run(const utf16_text &text) {
    for (std::int32_t place = longest_mark_run; place < text.length; place += longest_mark_run)
        if (is_in_long_run(text, place))
            return true;
    return false;
}

} // namespace

bool keeps_order(std::u16string_view text) {
    char16_t outside = 0;
    for (const char16_t unit : text)
        outside |= is_within_none(unit);
    return outside == 0;
}

bool lacks_marks(const char *charset) {
    return std::any_of(std::begin(charsets_without_marks), std::end(charsets_without_marks),
                       [=](const char *each) { return same_name(each, charset); });
}

utf16_text break_long_runs(utf16_text text) {
    if (!holds_long_run(text))
        return text;
    const auto length = static_cast<std::uint64_t>(text.length);
    const std::uint64_t capacity = length + length / longest_part;
    if (capacity > INT32_MAX)
        return {};
    utf16_text broken = {allocate_units(static_cast<std::size_t>(capacity)), 0};
    if (!broken.units)
        return broken;
    const UChar *const units = text.units.get();
    UChar *to = broken.units.get();
    for (std::int32_t at = 0; at < text.length;) {
        std::int32_t end = at;
        const std::int32_t marks = skip_marks(text, end, text.length);
        for (std::int32_t parts = marks > longest_mark_run ? marks / longest_part : 0; parts > 0; --parts) {
            const std::int32_t start = at;
            skip_marks(text, at, longest_part);
            to = std::copy(units + start, units + at, to);
            *to++ = combining_grapheme_joiner;
        }
        end = std::min(end + 1, text.length); // with a unit of what stands behind the marks
        to = std::copy(units + at, units + end, to);
        at = end;
    }
    broken.length = static_cast<std::int32_t>(to - broken.units.get());
    return broken;
}

} // namespace zel
