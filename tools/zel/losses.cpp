#include "losses.h"

#include "characters.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace tool {
namespace {

bool among(const std::vector<std::string> &list, const std::string &text) {
    return std::find(list.begin(), list.end(), text) != list.end();
}

// Some charsets have a substitute of its own for characters up to U+00FF.
std::vector<std::string> substitutes_of(const std::string &charset) {
    std::vector<std::string> met, met_again;
    const auto meet = [&](char32_t code) {
        const std::string bytes = from_utf8(charset, utf8(code));
        if (!among(met, bytes))
            met.push_back(bytes);
        else if (!among(met_again, bytes))
            met_again.push_back(bytes);
    };
    meet(replacement);
    meet(0x10FFFD);
    for (char32_t code = 0xC0; code <= 0xFF; ++code)
        meet(code);
    return met_again;
}

std::string reason(bool unread, char32_t code, const charset &from, const repertoire &characters) {
    char text[16];
    std::snprintf(text, sizeof text, "U+%04X", static_cast<unsigned>(code));
    return unread ? "not " + from.name : text + (" is not in " + characters.name());
}

// Calls for each character of UTF-8 that is lost, with its place in bytes and in characters.
template <class Lost, class Found>
void each_lost(std::string_view text, bool ascii_is_kept, Lost is_lost, Found found) {
    for (std::size_t at = 0, index = 0; at < text.size(); ++index) {
        const std::size_t run = ascii_is_kept ? ascii_run(text.substr(at)) : 0;
        at += run;
        index += run;
        if (at == text.size())
            break;
        const character next = first_character(text.substr(at));
        if (is_lost(next.code))
            found(at, index, next.code);
        at += next.length;
    }
}

std::size_t count_characters(std::string_view text) {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char byte) { return (byte & 0xC0) != 0x80; }));
}

// Where a character begins, by halving: the longest beginning of the text that holds no more than those before it. One
// that is cut off counts as one.
std::size_t beginning_of(std::size_t index, const charset &from, const std::string &charset, std::string_view text) {
    std::size_t before = 0, beyond = text.size() / from.unit + 1;
    while (beyond - before > 1) {
        const std::size_t middle = before + (beyond - before) / 2;
        const std::string read = to_utf8(charset, text.substr(0, middle * from.unit));
        (count_characters(read) > index ? beyond : before) = middle;
    }
    return before * from.unit;
}

void replace_units(std::string &text, std::size_t unit, const std::string &from, const std::string &to) {
    for (std::size_t at = 0; (at = text.find(from, at)) != text.npos; ++at)
        if (at % unit == 0)
            for (std::size_t end = at + from.size(); at < end; at += unit)
                text.replace(at, unit, to);
}

// What stands for a broken sequence may be in the text as a character too. That gives place to tabs, so that all
// which is read is for broken sequences.
std::string without_substitutes(std::string text, const charset &from) {
    const auto bytes_of = [&from](char32_t code) { return from_utf8(from.unmarked, utf8(code)); };
    if (from.kept == states::others)
        return text;
    if (bytes_of(replacement) != bytes_of(0x10FFFD))
        replace_units(text, from.unit, bytes_of(replacement), bytes_of('\t'));
    replace_units(text, from.unit, bytes_of(substitute), bytes_of('\t'));
    return text;
}

losses losses_in_utf8(const charset &from, const chunk &piece, repertoire &characters, std::size_t wanted) {
    losses found;
    const auto is_lost = [&](char32_t code) { return code == broken || !characters.holds(code); };
    each_lost(piece.text, characters.holds_ascii(), is_lost, [&](std::size_t at, std::size_t index, char32_t code) {
        if (++found.count <= wanted)
            found.first.push_back({piece.place_of(at, index), reason(code == broken, code, from, characters)});
    });
    return found;
}

losses losses_in_other(const charset &from, const chunk &piece, repertoire &characters, std::size_t wanted) {
    losses found;
    const std::string source = without_substitutes(std::string(piece.text), from);
    const auto is_broken = [&](char32_t code) {
        return code == broken || code == replacement || (code == substitute && from.kept != states::others);
    };
    const auto is_lost = [&](char32_t code) { return is_broken(code) || !characters.holds(code); };
    each_lost(to_utf8(piece.charset, source), false, is_lost, [&](std::size_t, std::size_t index, char32_t code) {
        if (++found.count <= wanted)
            found.first.push_back({piece.place_of(beginning_of(index, from, piece.charset, source), index),
                                   reason(is_broken(code), code, from, characters)});
    });
    return found;
}

} // namespace

repertoire::repertoire(const charset &of)
    : of_(of), substitutes_(substitutes_of(of.unmarked)), suspicious_(substitutes_), answers_(0x110000) {
    suspicious_.push_back(from_utf8(of.unmarked, utf8(replacement)));
    suspicious_.push_back(from_utf8(of.unmarked, utf8(substitute)));
    ascii_ = true;
    for (char32_t code = 0; code < 0x80; ++code)
        ascii_ = holds(code) && ascii_;
}

repertoire::answer repertoire::ask(char32_t code) const {
    const std::string bytes = from_utf8(of_.unmarked, utf8(code));
    const bool stands_for_others = among(substitutes_, bytes);
    return stands_for_others && (code == replacement || to_utf8(of_.unmarked, bytes) != utf8(code)) ? no : yes;
}

bool repertoire::suspects(std::string_view text) const {
    if (of_.kept == states::others) // what stands between shifts looks otherwise than alone
        return true;
    return std::any_of(suspicious_.begin(), suspicious_.end(), [text](const std::string &bytes) {
        return !bytes.empty() && memmem(text.data(), text.size(), bytes.data(), bytes.size());
    });
}

losses find_losses(const charset &from, const chunk &piece, repertoire &characters, std::size_t wanted) {
    return (from.utf8 || piece.utf32 ? losses_in_utf8 : losses_in_other)(from, piece, characters, wanted);
}

losses find_holes(const chunk &piece, std::string_view converted, const std::string &to_charset,
                  std::size_t wanted) {
    losses found;
    for (std::size_t in = 0, out = 0; in < piece.text.size();) {
        if (static_cast<unsigned char>(piece.text[in]) < 0xA1) {
            ++in, ++out;
            continue;
        }
        if (converted.substr(out, 2) == "??" && ++found.count <= wanted)
            found.first.push_back({piece.place_of(in, 0), "no counterpart in " + to_charset});
        out += 2;
        in += in + 1 < piece.text.size() && piece.text[in + 1] != '\0' ? 2 : 1; // a NUL ends the text
    }
    return found;
}

} // namespace tool
