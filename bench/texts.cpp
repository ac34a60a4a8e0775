#include "texts.h"

#include "neighbours.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <random>

namespace bench {
namespace {

constexpr std::size_t pool_size = 512 * 1024;
constexpr std::size_t columns = 70;

using letters = std::vector<std::string>; // each in UTF-8

// What takes three bytes in EUC-JP stays away: no mail is written in it.
bool holds(const std::vector<subject> &to, const std::vector<subject> &back, std::string letter) {
    scratch there(letter.size());
    scratch here(letter.size());
    std::string code = text_of(to.front().run(letter, there));
    const auto agrees = [&](std::string &from, const std::string &with) {
        return [&](const subject &neighbour) { return text_of(neighbour.run(from, here)) == with; };
    };
    return code.size() != 3 && std::ranges::all_of(to, agrees(letter, code)) &&
           std::ranges::all_of(back, agrees(code, letter));
}

letters find_letters(const std::string &charset) {
    const std::vector<subject> to = converting_neighbours("UTF-8", charset);
    const std::vector<subject> back = converting_neighbours(charset, "UTF-8");
    letters found;
    for (UChar32 point = 0x80; point < 0xD800; ++point) {
        char bytes[4];
        std::size_t length = 0;
        U8_APPEND_UNSAFE(bytes, length, point);
        const std::string letter(bytes, length);
        if (u_isalpha(point) && holds(to, back, letter))
            found.push_back(letter);
    }
    return found;
}

letters common_letters(const std::vector<std::string> &charsets) {
    static std::map<std::string, letters> known;
    letters common;
    for (const std::string &charset : charsets) {
        const auto [entry, is_new] = known.try_emplace(charset);
        if (is_new)
            entry->second = find_letters(charset);
        letters both;
        std::ranges::set_intersection(common, entry->second, std::back_inserter(both));
        common = &charset == &charsets.front() ? entry->second : both;
    }
    return common;
}

class writer {
public:
    explicit writer(const text_order &order)
        : kind_(order.kind), is_header_(order.shape == text_shape::header),
          own_(common_letters(order.alphabet)), is_wide_(own_.back().size() == 3) {}

    // In UTF-8; characters are counted.
    std::string operator()(std::size_t length) {
        std::string text;
        std::size_t column = 0;
        while (length > 0) {
            // With the blanks, three words in sixteen are one character in ten.
            const bool is_wide = is_wide_ && own_by(3, 16);
            const std::size_t word = std::min(length, is_wide ? wide_word() : 1 + below(9));
            for (std::size_t i = 0; i < word; ++i)
                text += is_wide || (!is_wide_ && own_by(1, 8)) ? own_[below(own_.size())] : ascii_letter();
            length -= word;
            column += (is_wide ? 2 : 1) * word + 1;
            const bool is_line = !is_header_ && column >= columns;
            text += is_line ? "\r\n" : is_wide && kind_ == text_kind::dense && !is_header_ ? "" : " ";
            column = is_line ? 0 : column;
        }
        return text;
    }

private:
    std::size_t below(std::size_t limit) { return random_() % limit; }
    bool own_by(std::size_t chance, std::size_t of) {
        return kind_ == text_kind::dense || (kind_ == text_kind::mixed && below(of) < chance);
    }
    std::size_t wide_word() {
        if (is_header_)
            return kind_ == text_kind::dense ? 6 : 3;
        return 2 + below(3);
    }
    std::string ascii_letter() {
        constexpr std::string_view set = "etaoinshrdlcumwfgypbvkxjqzETAOIN0123456789,.-";
        return {set[below(set.size())]};
    }

    text_kind kind_;
    bool is_header_;
    letters own_;
    bool is_wide_;
    std::mt19937 random_{20240601};
};

} // namespace

text_pool make_texts(const text_order &order) {
    const work encode = converting_neighbours("UTF-8", order.charset).front().run;
    writer write(order);
    constexpr std::size_t sample = 4096;
    scratch to(4 * (sample + order.size));
    const auto make = [&](std::size_t length) {
        std::string text = write(length);
        return text_of(encode(text, to));
    };
    const std::size_t length = order.size * sample / make(sample).size();
    text_pool texts(std::max<std::size_t>(1, pool_size / order.size));
    std::ranges::generate(texts, [&] { return make(length); });
    return texts;
}

} // namespace bench
