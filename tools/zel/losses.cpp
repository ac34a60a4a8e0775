#include "losses.h"

#include "characters.h"
#include "report.h"

#include <algorithm>
#include <cstdio>

namespace tool {
namespace {

constexpr std::size_t most_told = 10;

bool among(const std::vector<std::string> &list, const std::string &text) {
    return std::find(list.begin(), list.end(), text) != list.end();
}

void add(std::vector<std::string> &list, const std::string &text) {
    if (!among(list, text))
        list.push_back(text);
}

// Without a branch, and all in bytes, so that the compiler compares many places at once.
bool holds_pair(std::string_view text, char first, char second) {
    if (text.empty())
        return false;
    const char *one = text.data(), *other = text.data() + 1;
    unsigned char differ = 0xFF;
    for (std::size_t at = 0; at + 1 < text.size(); ++at) {
        const auto here = static_cast<unsigned char>((one[at] ^ first) | (other[at] ^ second));
        differ = std::min(differ, here);
    }
    return differ == 0;
}

bool holds_bytes(std::string_view text, const std::string &bytes) {
    if (bytes.size() < 2)
        return !bytes.empty() && text.find(bytes) != text.npos;
    return holds_pair(text, bytes[0], bytes[1]) && (bytes.size() == 2 || text.find(bytes) != text.npos);
}

// Some charsets have a substitute of their own for characters up to U+00FF.
std::vector<std::string> substitutes_of(const std::string &charset) {
    std::vector<std::string> met, met_again;
    const auto meet = [&](char32_t code) {
        const std::string bytes = from_utf8(charset, utf8(code));
        add(among(met, bytes) ? met_again : met, bytes);
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
    std::size_t index = 0;
    for (std::string_view rest = text; !rest.empty(); ++index) {
        if (ascii_is_kept && !(rest.front() & 0x80)) {
            const std::size_t run = ascii_run(rest);
            index += run - 1;
            rest.remove_prefix(run);
            continue;
        }
        const character next = first_character(rest);
        if (is_lost(next.code, index))
            found(text.size() - rest.size(), index, next.code);
        rest.remove_prefix(next.length);
    }
}

std::size_t count_characters(std::string_view text) {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char byte) { return (byte & 0xC0) != 0x80; }));
}

// Where a character begins: behind the longest beginning of the text that holds no more characters than stand
// before it. One that is cut off counts as one. Doubled first, so that what stands early is found early; then
// halved.
std::size_t beginning_of(std::size_t index, const charset &from, const std::string &charset,
                         std::string_view text) {
    const auto reaches = [&](std::size_t units) {
        return units * from.unit >= text.size() ||
               count_characters(to_utf8(charset, text.substr(0, units * from.unit))) > index;
    };
    std::size_t before = 0, beyond = 1;
    while (!reaches(beyond)) {
        before = beyond;
        beyond *= 2;
    }
    while (beyond - before > 1) {
        const std::size_t middle = before + (beyond - before) / 2;
        (reaches(middle) ? beyond : before) = middle;
    }
    return before * from.unit;
}

void replace(std::string &text, const charset &of, char32_t code, char32_t other) {
    const std::string bytes = from_utf8(of.unmarked, utf8(code)),
                      others = from_utf8(of.unmarked, utf8(other));
    if (bytes.size() != others.size())
        return;
    for (std::size_t at = 0; (at = text.find(bytes, at)) != text.npos; ++at)
        if (at % of.unit == 0)
            text.replace(at, bytes.size(), others);
}

// For U+FFFD: no text holds it, and charsets that lack the one lack the other.
constexpr char32_t stand_in = 0xFFFF;

// What ICU reads in place of a broken sequence may be in the text as a character too. That one gives place to
// another of its size and fate, so that all which is read is for broken sequences.
std::string without_substitutes(std::string text, const charset &from) {
    if (from.kept == states::others)
        return text;
    replace(text, from, substitute, '\t');
    if (from_utf8(from.unmarked, utf8(replacement)) != from_utf8(from.unmarked, utf8(stand_in)))
        replace(text, from, replacement, stand_in);
    return text;
}

losses losses_in_utf8(const charset &from, const chunk &piece, repertoire &characters, std::size_t wanted) {
    losses found;
    const auto is_broken = [&](char32_t code, std::size_t index) {
        return code == broken || std::binary_search(piece.broken.begin(), piece.broken.end(), index);
    };
    const auto is_lost = [&](char32_t code, std::size_t index) {
        return is_broken(code, index) || !characters.holds(code);
    };
    each_lost(piece.text, characters.holds_ascii(), is_lost,
              [&](std::size_t at, std::size_t index, char32_t code) {
                  if (++found.count <= wanted)
                      found.first.push_back({piece.place_of(at, index),
                                             reason(is_broken(code, index), code, from, characters)});
              });
    return found;
}

losses losses_in_other(const charset &from, const chunk &piece, repertoire &characters, std::size_t wanted) {
    losses found;
    const std::string source = without_substitutes(std::string(piece.text), from);
    const auto is_broken = [&](char32_t code) {
        return code == broken || code == replacement || (code == substitute && from.kept != states::others);
    };
    const auto is_lost = [&](char32_t code, std::size_t) {
        return is_broken(code) || !characters.holds(code);
    };
    each_lost(to_utf8(piece.charset, source), false, is_lost,
              [&](std::size_t, std::size_t index, char32_t code) {
                  if (++found.count <= wanted)
                      found.first.push_back(
                          {piece.place_of(beginning_of(index, from, piece.charset, source), index),
                           reason(is_broken(code), code == stand_in ? replacement : code, from, characters)});
              });
    return found;
}

} // namespace

repertoire::repertoire(const charset &of)
    : of_(of), substitutes_(substitutes_of(of.unmarked)), suspicious_(substitutes_), answers_(0x110000) {
    add(suspicious_, from_utf8(of.unmarked, utf8(replacement)));
    add(suspicious_, from_utf8(of.unmarked, utf8(substitute)));
    ascii_ = true;
    for (char32_t code = 0; code < 0x80; ++code)
        ascii_ = holds(code) && ascii_;
}

repertoire::answer repertoire::ask(char32_t code) const {
    const std::string bytes = from_utf8(of_.unmarked, utf8(code));
    const bool stands_for_others = among(substitutes_, bytes);
    return stands_for_others && (code == replacement || to_utf8(of_.unmarked, bytes) != utf8(code)) ? no
                                                                                                    : yes;
}

bool repertoire::suspects(std::string_view text) const {
    if (of_.kept == states::others) // what stands between shifts looks otherwise than alone
        return true;
    return std::any_of(suspicious_.begin(), suspicious_.end(),
                       [text](const std::string &bytes) { return holds_bytes(text, bytes); });
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

std::size_t loss_report::wanted() const {
    return count_ < most_told ? most_told - static_cast<std::size_t>(count_) : 0;
}

void loss_report::add(const losses &found) {
    for (const loss &each : found.first)
        report(path_, "byte " + std::to_string(each.place) + ": " + each.reason);
    count_ += found.count;
}

void loss_report::close() const {
    if (count_ > most_told)
        report(path_, "and " + std::to_string(count_ - most_told) + " more");
}

} // namespace tool
