// Header values on their way in: folds are taken out in place, the encoded words of RFC 2047 whose charset
// the language admits are decoded and converted, and the text around them passes through. The text behind the
// last word is read as the language's raw mail is.
//
// Invariant: the text is read up to its terminator in one pass, and what does not fit stops the output behind
// the last whole word or character.

#include "zel.h"
#include "zel/base/charset_names.h"
#include "zel/base/frame.h"
#include "zel/base/output.h"
#include "zel/codec/base64.h"
#include "zel/codec/quoted_printable.h"
#include "zel/codec/string_validity.h"
#include "zel/conversion/buffer_conversion.h"
#include "zel/conversion/routes.h"
#include "zel/conversion/string_conversion.h"
#include "zel/policy/charset_policy.h"
#include "zel/policy/languages.h"
#include "zel/simd/padded_text.h"

#include <bit>

namespace zel {
namespace {

constexpr std::size_t longest_charset = 32;
constexpr std::size_t longest_language = 10;
constexpr std::size_t stack_scratch = 1023 + decoding_slack;

bool is_blank(char character) {
    return character == ' ' || character == '\t';
}

bool is_fold(const char *at) {
    return at[0] == '\r' && at[1] == '\n' && is_blank(at[2]);
}

bool opens_word(const char *at) {
    return at[0] == '=' && at[1] == '?';
}

char *move_down(char *to, const char *from, const char *end) {
    const auto length = static_cast<std::size_t>(end - from);
    if (to != from)
        std::memmove(to, from, length);
    return to + length;
}

const char *skip_blanks(const char *at) {
    while (is_blank(*at))
        ++at;
    return at;
}

// Where a text has a CR, found a block ahead of what is changed.
struct return_search {
    std::string_view rest; // from the block on
    bitmask64 places;      // of those in the block that were not given yet
};

bitmask64 returns_in(std::string_view text) {
    return places_of('\r', text.size() < block_size ? load_rest(text) : load_block(text.data()));
}

// Null where there is no other.
const char *next_return(return_search &search) {
    while (search.places == 0) {
        if (search.rest.size() <= block_size)
            return nullptr;
        search.rest.remove_prefix(block_size);
        search.places = returns_in(search.rest);
    }
    const char *at = search.rest.data() + std::countr_zero(search.places);
    search.places &= search.places - 1;
    return at;
}

// Takes the folds out, in place, and gives what is left. A fold that an encoded word follows goes whole; any
// other leaves its blanks.
std::string_view unfold(char *text) {
    const std::string_view value = text;
    char *to = text;
    const char *from = text; // what stands from here on is not moved yet
    return_search search = {value, returns_in(value)};
    while (const char *at = next_return(search)) {
        if (!is_fold(at))
            continue;
        to = move_down(to, from, at);
        from = at + 2;
        const char *text_behind = skip_blanks(from);
        if (opens_word(text_behind))
            from = text_behind;
    }
    to = move_down(to, from, value.data() + value.size() + 1);
    return {text, static_cast<std::size_t>(to - text) - 1};
}

struct encoded_word {
    std::string_view charset;
    char encoding;
    std::string_view raw; // its text, still encoded
};

// Takes the characters up to a "?" or, within the charset, a "*"; false where there is none or the field is
// too long.
bool take_field(std::string_view &from, char other_end, std::size_t longest, std::string_view &field) {
    const std::size_t limit = std::min(from.size(), longest + 1);
    std::size_t length = 0;
    while (length < limit && from[length] != '?' && from[length] != other_end)
        ++length;
    field = from.substr(0, length);
    from.remove_prefix(length);
    return length < limit;
}

// Takes a whole word from the text, or nothing.
bool take_word(std::string_view &text, std::size_t longest_raw, encoded_word &word) {
    std::string_view from = text.substr(2);
    std::string_view language;
    if (!take_field(from, '*', longest_charset, word.charset))
        return false;
    if (from.front() == '*') {
        from.remove_prefix(1);
        if (!take_field(from, '?', longest_language, language))
            return false;
    }
    if (from.size() < 3 || from[2] != '?')
        return false;
    word.encoding = from[1];
    from.remove_prefix(3);
    const std::size_t length = from.find("?=");
    if (length == std::string_view::npos || length > longest_raw)
        return false;
    word.raw = from.substr(0, length);
    text = from.substr(length + 2);
    return true;
}

// What a header value consists of: plain text and words in turn, then the tail, or the rest from a "=?" on
// that opens no word.
struct piece {
    enum class kind { plain, word, unparsed, tail };
    kind what;
    std::string_view text; // as it stands in the value
    encoded_word word;
};

// The tail, though it be empty, comes last, unless a rest that does not parse ends the value before it.
piece take_piece(std::string_view &rest, std::size_t longest_raw) {
    piece taken = {piece::kind::tail, rest, {}};
    const std::size_t plain = rest.starts_with("=?") ? 0 : rest.find("=?");
    if (plain == std::string_view::npos) {
        rest = {};
    } else if (plain > 0) {
        taken.what = piece::kind::plain;
        rest.remove_prefix(plain);
    } else if (take_word(rest, longest_raw, taken.word)) {
        taken.what = piece::kind::word;
    } else {
        taken.what = piece::kind::unparsed;
        rest = {};
    }
    taken.text.remove_suffix(rest.size());
    return taken;
}

bool ends_value(const piece &taken) {
    return taken.what == piece::kind::tail || taken.what == piece::kind::unparsed;
}

struct header_pass {
    LanguageID language;
    bool japanese;
    const char *to_charset;
    std::string_view text;
    std::size_t longest_raw;
    char *decoded; // room for the longest raw text; null where there is no memory
};

enum class word_way { raw, copy, direct, by_pair };

struct word_conversion {
    word_way how;
    charset_pair pair;
    const route *direct;
};

word_conversion choose_conversion(const header_pass &pass, const char *charset) {
    if (!pass.decoded || !is_known_charset(pass.language, charset))
        return {word_way::raw, {}, nullptr};
    if (same_name(charset, pass.to_charset))
        return {word_way::copy, {}, nullptr};
    charset_pair pair = look_up(charset, pass.to_charset);
    if (!open_pair(pair))
        return {word_way::raw, {}, nullptr};
    const route *direct = find_route(scope::headers, charset, pass.to_charset);
    return {direct ? word_way::direct : word_way::by_pair, pair, direct};
}

struct recent_charset {
    char buf[longest_charset + 1];
    std::string_view name; // in buf
    word_conversion chosen;
};

// The charsets of words that came before, which are as a rule those of the next ones too.
struct recent_charsets {
    std::array<recent_charset, 4> latest;
    std::size_t met = 0;
};

recent_charset *find_recent(std::string_view charset, recent_charsets &recent) {
    for (std::size_t i = 0; i < std::min(recent.met, recent.latest.size()); ++i)
        if (recent.latest[i].name == charset)
            return &recent.latest[i];
    return nullptr;
}

void remember(const header_pass &pass, std::string_view charset, recent_charset &recent) {
    *std::copy(charset.begin(), charset.end(), recent.buf) = '\0';
    recent.name = {recent.buf, charset.size()};
    recent.chosen = choose_conversion(pass, recent.buf);
}

bool is_b(const encoded_word &word) {
    return word.encoding == 'B' || word.encoding == 'b';
}

bool is_q(const encoded_word &word) {
    return word.encoding == 'Q' || word.encoding == 'q';
}

// A charset that could not be converted from may be by the next word, when there is memory again.
const word_conversion &conversion_of(const header_pass &pass, const encoded_word &word,
                                     recent_charsets &recent) {
    static constexpr word_conversion undecoded = {word_way::raw, {}, nullptr};
    if (!is_b(word) && !is_q(word))
        return undecoded;
    recent_charset *found = find_recent(word.charset, recent);
    if (found && found->chosen.how != word_way::raw)
        return found->chosen;
    if (!found)
        found = &recent.latest[recent.met++ % recent.latest.size()];
    remember(pass, word.charset, *found);
    return found->chosen;
}

std::string_view decode(const header_pass &pass, const encoded_word &word) {
    const std::size_t length =
        is_b(word) ? decode_b(word.raw, pass.decoded) : decode_q(word.raw, pass.decoded);
    return {pass.decoded, length};
}

bool put_word(const header_pass &pass, const encoded_word &word, recent_charsets &recent, output &to) {
    const word_conversion &chosen = conversion_of(pass, word, recent);
    if (chosen.how == word_way::raw)
        return put(to, word.raw);
    const std::string_view decoded = decode(pass, word);
    switch (chosen.how) {
    case word_way::copy:
        return put(to, decoded);
    case word_way::direct:
        return put_whole(to, *chosen.direct->convert, input_from(decoded));
    default:
        return put_converted(to, chosen.pair, decoded);
    }
}

bool is_japanese(const char *language) {
    return language && std::strncmp(language, "ja", 2) == 0;
}

void put_plain_tail(std::string_view tail, output &to) {
    const std::size_t before = to.length;
    put_some(to, tail);
    if (to.start && !passes_8bit())
        std::replace_if(to.start + before, to.start + to.length, has_high_bit, '?');
}

// Raw JIS is what Japanese mailers once wrote; no other language has a charset for raw bytes.
void put_tail(const header_pass &pass, std::string_view tail, output &to) {
    if (!pass.japanese)
        put_plain_tail(tail, to);
    else if (const route *direct = find_route(scope::headers, ianaISO2022JP, pass.to_charset))
        direct->convert(input_from(tail), to);
    else
        put_some_converted(to, look_up(ianaISO2022JP, pass.to_charset), tail);
}

bool put_piece(const header_pass &pass, const piece &taken, recent_charsets &recent, output &to) {
    if (taken.what == piece::kind::word)
        return put_word(pass, taken.word, recent, to);
    if (taken.what == piece::kind::tail)
        put_tail(pass, taken.text, to);
    else if (!put_some(to, taken.text))
        return false;
    return !ends_value(taken);
}

void put_value(const header_pass &pass, output &to) {
    std::string_view rest = pass.text;
    recent_charsets recent;
    while (put_piece(pass, take_piece(rest, pass.longest_raw), recent, to))
        ;
}

std::uint64_t documented_size(const header_pass &pass, const piece &taken, const word_conversion &chosen) {
    if (taken.what != piece::kind::word)
        return taken.text.size();
    if (chosen.how == word_way::raw)
        return taken.word.raw.size();
    const std::size_t decoded = decode(pass, taken.word).size();
    if (chosen.how == word_way::copy)
        return decoded;
    return decoded == 0 ? 1 : static_cast<std::uint64_t>(result_size(chosen.pair, decoded));
}

bool holds_fold(std::string_view text) {
    for (std::size_t at = text.find("\r\n"); at != std::string_view::npos; at = text.find("\r\n", at + 2))
        if (at + 2 < text.size() && is_blank(text[at + 2]))
            return true;
    return false;
}

// A target of several sets switches them on and off around a text, and UTF-16 and UTF-32 put a byte order
// mark in front of it. No size of a character tells of these.
bool adds_to_texts(const charset_pair &pair) {
    constexpr std::int32_t longest_of_one_set = 4;
    return pair.cached->max_char_size > longest_of_one_set ||
           ucnv_getMinCharSize(pair.cached->to_cnv.get()) > 1;
}

// A fold within a word may hide another reading of it, the tail of a Japanese value may widen, and so may its
// words where all else passes through.
bool may_need_more(const header_pass &pass, const piece &taken, const word_conversion &chosen) {
    if (taken.what == piece::kind::plain)
        return false;
    if (taken.what == piece::kind::tail)
        return pass.japanese && !taken.text.empty();
    return (chosen.how == word_way::by_pair && adds_to_texts(chosen.pair)) || holds_fold(taken.text) ||
           passes_through();
}

std::uint64_t real_need(header_pass pass, std::int32_t from_len) {
    const heap_string unfolded(duplicate(pass.text.data()));
    if (!unfolded)
        return 0;
    pass.text = unfold(unfolded.get());
    pass.longest_raw = from_len < 0 ? pass.text.size() : pass.longest_raw;
    output counted = counting_output();
    put_value(pass, counted);
    return counted.length;
}

std::int32_t estimate(const header_pass &pass, std::int32_t from_len) {
    std::uint64_t documented = 0;
    bool needs_more = false;
    std::string_view rest = pass.text;
    recent_charsets recent;
    for (bool ended = false; !ended;) {
        const piece taken = take_piece(rest, pass.longest_raw);
        const bool is_word = taken.what == piece::kind::word;
        const word_conversion chosen = is_word ? conversion_of(pass, taken.word, recent) : word_conversion{};
        documented += documented_size(pass, taken, chosen);
        needs_more = needs_more || may_need_more(pass, taken, chosen);
        ended = ends_value(taken);
    }
    return saturate(needs_more ? std::max(documented, real_need(pass, from_len)) : documented);
}

} // namespace
} // namespace zel

using namespace zel;

int32_t ZEL_InternetMessageHeaderToLocalLen(const char *language, char *text, int32_t from_len,
                                            const char *to_charset, char *to_buf, int32_t to_size) {
    require_started();
    const std::string_view value = to_size >= 0 ? unfold(text) : text;
    const std::size_t longest_raw = from_len < 0 ? value.size() : static_cast<std::size_t>(from_len);
    const std::size_t scratch_size = std::min(longest_raw, value.size()) + decoding_slack;
    char on_stack[stack_scratch];
    const heap_string on_heap = scratch_size > stack_scratch ? allocate<char>(scratch_size) : nullptr;
    const header_pass pass = {checkLanguage(language),
                              is_japanese(language),
                              to_charset,
                              value,
                              longest_raw,
                              scratch_size > stack_scratch ? on_heap.get() : on_stack};
    if (to_size < 0)
        return estimate(pass, from_len);
    output to = output_to(to_buf, to_size);
    put_value(pass, to);
    const std::int32_t count = finish_string(to);
    if (to.size > 0)
        checkstringvalidity(to_charset, to_buf, to.length);
    return count;
}

int32_t ZEL_InternetMessageHeaderToLocal(const char *language, char *text, const char *to_charset,
                                         char *to_buf, int32_t to_size) {
    return ZEL_InternetMessageHeaderToLocalLen(language, text, -1, to_charset, to_buf, to_size);
}

int32_t ZEL_InternetMessageHeaderToUTF8(const char *language, char *text, char *to_buf, int32_t to_size) {
    return ZEL_InternetMessageHeaderToLocal(language, text, encUTF8, to_buf, to_size);
}
