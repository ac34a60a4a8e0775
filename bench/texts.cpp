#include "texts.h"

#include "catalogues.h"
#include "neighbours.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <random>
#include <stdexcept>

namespace bench {
namespace {

constexpr std::size_t pool_size = 512 * 1024;
constexpr std::size_t repeated_size = 64 * 1024;
constexpr std::size_t fewest_lines = 1000;
constexpr std::size_t columns = 70;

using letters = std::vector<std::string>; // each in UTF-8

// What the neighbours make of a text in UTF-8, there and back.
class round_trip {
public:
    explicit round_trip(const std::string &charset)
        : to_(converting_neighbours("UTF-8", charset)), back_(converting_neighbours(charset, "UTF-8")) {}

    // Empty if they do not agree, or if the text does not come back.
    std::string code_of(std::string text) const {
        scratch there(text.size());
        std::string code = text_of(to_.front().run(text, there));
        const auto agrees = [&](std::string &from, const std::string &with) {
            return [&](const subject &neighbour) { return text_of(neighbour.run(from, there)) == with; };
        };
        const bool holds =
            std::ranges::all_of(to_, agrees(text, code)) && std::ranges::all_of(back_, agrees(code, text));
        return holds ? code : "";
    }

private:
    std::vector<subject> to_;
    std::vector<subject> back_;
};

// What takes three bytes in EUC-JP stays away: no mail is written in it.
letters find_letters(const std::string &charset) {
    const round_trip trip(charset);
    letters found;
    for (UChar32 point = 0x80; point < 0xD800; ++point) {
        char bytes[4];
        std::size_t length = 0;
        U8_APPEND_UNSAFE(bytes, length, point);
        const std::string letter(bytes, length);
        if (!u_isalpha(point))
            continue;
        const std::string code = trip.code_of(letter);
        if (!code.empty() && code.size() != 3)
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

text_pool repeat_text(const std::string &text, std::size_t size) {
    std::string repeated;
    while (repeated.size() < size)
        repeated += text;
    std::size_t end = size;
    while (end < repeated.size() && U8_IS_TRAIL(repeated[end]))
        --end;
    return text_pool(std::max<std::size_t>(1, repeated_size / size), repeated.substr(0, end));
}

text_pool natural_lines(const std::string &language, const std::string &charset) {
    const round_trip trip(charset);
    text_pool lines = catalogue_lines(language);
    std::erase_if(lines, [&](const std::string &line) { return trip.code_of(line).empty(); });
    if (lines.size() < fewest_lines)
        throw std::runtime_error("too few message catalogues of " + language + " in /usr/share/locale for " +
                                 charset);
    return lines;
}

text_pool natural_pieces(const std::string &language, const std::string &charset, std::size_t size) {
    text_pool pieces(1);
    for (const std::string &line : natural_lines(language, charset)) {
        if (pieces.back().size() >= size)
            pieces.emplace_back();
        pieces.back() += line + "\r\n";
    }
    pieces.pop_back(); // which may be short
    return pieces;
}

text_pool encode_texts(const text_pool &texts, const std::string &charset) {
    const work encode = converting_neighbours("UTF-8", charset).front().run;
    scratch to(std::ranges::max(texts, {}, &std::string::size).size());
    text_pool encoded;
    for (std::string text : texts)
        encoded.push_back(text_of(encode(text, to)));
    return encoded;
}

} // namespace bench
