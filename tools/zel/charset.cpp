#include "charset.h"

#include <zel.hpp>

#include <algorithm>
#include <iterator>

#include <strings.h>

namespace tool {
namespace {

using namespace std::string_view_literals;

struct byte_order {
    std::string_view mark;
    const char *name;
};

// A mark of UTF-32 before the one of UTF-16 that it begins with.
constexpr byte_order orders[] = {{"\0\0\xFE\xFF"sv, "UTF-32BE"},
                                 {"\xFF\xFE\0\0"sv, "UTF-32LE"},
                                 {"\xFE\xFF"sv, "UTF-16BE"},
                                 {"\xFF\xFE"sv, "UTF-16LE"}};

bool begins_with(std::string_view text, std::string_view beginning) {
    return text.substr(0, beginning.size()) == beginning;
}

template <class Matches>
const byte_order *find_order(std::size_t unit, Matches matches) {
    const auto found = std::find_if(std::begin(orders), std::end(orders), [&](const byte_order &order) {
        return order.mark.size() == unit && matches(order);
    });
    return found == std::end(orders) ? nullptr : found;
}

const byte_order *marked_order(std::size_t unit, std::string_view text) {
    return find_order(unit, [text](const byte_order &order) { return begins_with(text, order.mark); });
}

// In which a charset reads what has no mark.
const byte_order *own_order(const charset &of) {
    return find_order(of.unit, [&of](const byte_order &order) {
        return to_utf8(of.name, from_utf8(order.name, "a")) == "a";
    });
}

// A text can be cut behind a line feed if a character is the same bytes wherever it stands, and none but the
// line feed has the bytes of one.
bool keeps_states(const charset &of) {
    const auto depends = [&of](const char *character) {
        const std::string once = from_utf8(of.name, character);
        const std::string twice = from_utf8(of.name, std::string(character) + character);
        return twice != once + once || once.find(of.line_feed) != once.npos;
    };
    constexpr const char *characters[] = {"é", "я", "日", "한", "中", "あ", "€", "\U0001F60A"};
    return std::any_of(std::begin(characters), std::end(characters), depends);
}

states states_of(const charset &of) {
    if (!keeps_states(of))
        return states::none;
    const std::string kanji = from_utf8(of.name, "日");
    return begins_with(kanji, "\x1B$B") || begins_with(kanji, "\x1B$@") ? states::escapes : states::others;
}

void take_cuts(charset &of) {
    of.line_feed = from_utf8(of.unmarked, "\n");
    of.blank = from_utf8(of.unmarked, " ");
}

} // namespace

charset learn(const std::string &name) {
    const std::string once = from_utf8(name, "a");
    charset found = {name, name, states::mark, false, from_utf8(name, "aa").size() - once.size(), "", ""};
    const byte_order *order = once.size() == 2 * found.unit ? marked_order(found.unit, once) : nullptr;
    if (order)
        found.unmarked = order->name;
    take_cuts(found);
    if (!order)
        found.kept = states_of(found);
    constexpr const char *sample = "é日\U0001F60A";
    found.utf8 = found.kept == states::none && from_utf8(name, sample) == sample;
    return found;
}

charset settle(const charset &from, std::string_view beginning) {
    if (from.kept != states::mark)
        return from;
    charset settled = from;
    const byte_order *marked = marked_order(from.unit, beginning);
    const byte_order *order = marked ? marked : own_order(from);
    if (order)
        settled.unmarked = order->name;
    take_cuts(settled);
    return settled;
}

bool same_name(const std::string &one, const std::string &other) {
    return strcasecmp(one.c_str(), other.c_str()) == 0;
}

std::string to_utf8(const std::string &charset, std::string_view text) {
    return zel::convert(text, charset, "UTF-8");
}

std::string from_utf8(const std::string &charset, std::string_view text) {
    return zel::convert(text, "UTF-8", charset);
}

} // namespace tool
