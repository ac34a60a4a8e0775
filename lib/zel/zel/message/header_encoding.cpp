// Header values on their way out, as RFC 2047 has them. Plain 7-bit text goes out as it is. Otherwise the
// language alone chooses: Japanese, Korean and regional Chinese put each run of non-ASCII bytes into "B"
// words amid the plain text; all others turn the whole value into a chain of "Q" words.
//
// Invariant: the text is only read, and what does not fit stops the output behind the last whole word or
// character.

#include "zel.h"
#include "zel/base/charset_names.h"
#include "zel/base/frame.h"
#include "zel/base/input.h"
#include "zel/base/output.h"
#include "zel/codec/base64.h"
#include "zel/codec/quoted_printable.h"
#include "zel/conversion/buffer_conversion.h"
#include "zel/policy/languages.h"

namespace zel {
namespace {

enum class encoding { none, q_words, b_words_ja, b_words_ko_zh };

// How many bytes of a run belong together, so that a low trail byte stays in the run.
enum class character_width { one_byte, pairs, shift_jis };

struct header_value {
    encoding how;
    character_width width;
    bool is_utf8;
    const char *charset; // on the wire
    charset_pair pair;
    std::string_view text;
};

encoding choose_encoding(LanguageID language, const char *charset) {
    if (same_name(charset, ianaUSASCII))
        return encoding::none;
    if (language == japanese)
        return encoding::b_words_ja;
    return ZEL_IsDBCSLanguage(language) ? encoding::b_words_ko_zh : encoding::q_words;
}

character_width choose_width(LanguageID language, const char *from_charset) {
    if (language == japanese && same_name(from_charset, ianaSHIFTJIS))
        return character_width::shift_jis;
    if (language == chinese_tw && !same_name(from_charset, encUTF8))
        return character_width::pairs;
    return character_width::one_byte;
}

header_value value_of(const char *language, const char *from_charset, std::string_view text) {
    const LanguageID id = ZEL_GetIntLanguageID(language);
    const char *charset = ZEL_InternetMessageCharset(language, text.data());
    const encoding how = choose_encoding(id, charset);
    if (how == encoding::none)
        return {how, character_width::one_byte, false, charset, {}, text};
    return {how,     choose_width(id, from_charset), same_name(from_charset, encUTF8),
            charset, look_up(from_charset, charset), text};
}

void put_q_words(const header_value &value, output &to) {
    const converted_text converted = convert_text(value.pair, value.text);
    if (converted.bytes)
        mime_encode_qp_src(converted.bytes.get(), to, true, value.charset);
}

// The measure of a word: what the frame around its text is reckoned at, what the escape sequences within it
// are, and the longest piece of a run that no line holds whole.
struct word_measure {
    std::size_t frame;
    std::size_t escapes;
    std::size_t longest_piece;
    std::size_t longest_piece_utf8;
};

constexpr std::size_t word_frame = 7;  // what surrounds the charset and the text of an encoded word
constexpr std::size_t fold_length = 3; // CR, LF and a blank or TAB
constexpr std::size_t line_limit = 60; // characters, of a line and of the text of a "Q" word alike

constexpr word_measure measure_ja = {18, 24, 24, 24};
constexpr word_measure measure_ko_zh = {13, 0, 34, 33};

constexpr std::size_t longest_run =
    64; // no run of more than 53 bytes is ever one word, so none is measured further

constexpr std::size_t longest_character = 8; // with what switches its set on and off

std::size_t width_of(char byte, character_width width) {
    switch (width) {
    case character_width::one_byte:
        return 1;
    case character_width::pairs:
        return 2;
    case character_width::shift_jis:
        return is_hankakukana(static_cast<unsigned char>(byte)) ? 1 : 2;
    }
    return 1;
}

std::size_t measure_run(std::string_view text, character_width width) {
    std::size_t length = 0;
    while (length < text.size() && length < longest_run && has_high_bit(text[length]))
        length += width_of(text[length], width);
    return std::min(length, text.size());
}

// One pass over a value whose runs become "B" words.
struct b_pass {
    const header_value &value;
    const word_measure &measure;
    output &to;
    std::size_t column;   // of the current line; a line break that stands in the text does not count
    std::size_t fold_end; // where the last fold ended in the output
};

bool put_fold(b_pass &pass, std::string_view fold) {
    pass.column = 0;
    if (!put(pass.to, fold))
        return false;
    pass.fold_end = pass.to.length;
    return true;
}

// The blank that a line is folded at stays at its end and is repeated at the start of the next.
bool put_plain(b_pass &pass, char byte) {
    if (!put(pass.to, static_cast<unsigned char>(byte)))
        return false;
    pass.column += 1;
    if (pass.column <= line_limit || (byte != ' ' && byte != '\t'))
        return true;
    return put_fold(pass, byte == ' ' ? "\r\n " : "\r\n\t");
}

bool put_word(b_pass &pass, std::string_view segment) {
    char converted[longest_run * 16]; // no charset takes 16 bytes for a byte of another
    const header_value &value = pass.value;
    const std::int32_t length = convert_or_copy(value.pair, segment, converted, sizeof converted);
    const std::string_view text(converted, strnlen(converted, static_cast<std::size_t>(length)));
    const std::string_view charset = value.charset;
    const std::size_t size = charset.size() + word_frame + static_cast<std::size_t>(base64_size(text.size()));
    pass.column += size;
    return fits(pass.to, size) && put(pass.to, "=?") && put(pass.to, charset) && put(pass.to, "?B?") &&
           put_base64(pass.to, text) && put(pass.to, "?=");
}

// Three bytes of UTF-8 are reckoned as two on the wire.
bool fits_line(const b_pass &pass, std::size_t length) {
    const std::size_t effective = pass.value.is_utf8 ? length * 2 / 3 : length;
    const std::size_t estimate = (effective * 4 + pass.measure.escapes) / 3;
    return pass.column + estimate + pass.measure.frame <= line_limit;
}

bool put_run(b_pass &pass, std::string_view &rest) {
    std::size_t length = measure_run(rest, pass.value.width);
    if (!fits_line(pass, length) && pass.column != 0 && !put_fold(pass, "\r\n "))
        return false;
    const bool cut = !fits_line(pass, length);
    if (cut)
        length = pass.value.is_utf8 ? pass.measure.longest_piece_utf8 : pass.measure.longest_piece;
    if (!put_word(pass, rest.substr(0, length)))
        return false;
    rest.remove_prefix(length);
    return !cut || put_fold(pass, "\r\n ");
}

bool put_plain_or_run(b_pass &pass, std::string_view &rest) {
    if (has_high_bit(rest.front()))
        return put_run(pass, rest);
    const char byte = rest.front();
    rest.remove_prefix(1);
    return put_plain(pass, byte);
}

void put_b_words(const header_value &value, const word_measure &measure, output &to) {
    b_pass pass = {value, measure, to, 0, 0};
    std::string_view rest = value.text;
    while (!rest.empty() && put_plain_or_run(pass, rest))
        ;
    // A fold that nothing follows would leave a line of blanks alone.
    if (!rest.empty() && pass.fold_end && pass.fold_end == to.length)
        to.length -= fold_length;
}

void put_value(const header_value &value, output &to) {
    switch (value.how) {
    case encoding::none:
        put_some(to, value.text);
        return;
    case encoding::q_words:
        put_q_words(value, to);
        return;
    case encoding::b_words_ja:
        put_b_words(value, measure_ja, to);
        return;
    case encoding::b_words_ko_zh:
        put_b_words(value, measure_ko_zh, to);
        return;
    }
}

// At most this many bytes, terminator included, for a value whose conversion is sized as `converted` bytes.
// That size leaves out a character that the end of the text cuts off.
std::uint64_t bound_q_words(const header_value &value, std::uint64_t converted) {
    converted += longest_character;
    const std::uint64_t words = converted / (line_limit / 3) + 1;
    return converted * 3 + words * (std::strlen(value.charset) + word_frame + fold_length) + 1;
}

std::uint64_t count_runs(std::string_view text) {
    std::uint64_t runs = 0;
    bool in_run = false;
    for (const char byte : text) {
        runs += has_high_bit(byte) && !in_run;
        in_run = has_high_bit(byte);
    }
    return runs;
}

std::uint64_t bound_b_words(const header_value &value, std::uint64_t converted) {
    const std::uint64_t bytes = value.text.size();
    const std::uint64_t words = count_runs(value.text) + bytes / measure_ja.longest_piece + 1;
    const std::uint64_t frame = std::strlen(value.charset) + word_frame + fold_length;
    const std::uint64_t escaped = words * longest_character; // a word switches sets, and is padded
    if (value.how == encoding::b_words_ja)                   // broken text may switch within a word
        converted = std::max(converted, bytes * longest_character);
    const std::uint64_t folds = bytes * fold_length / line_limit;
    return bytes + folds + words * frame + (converted + escaped) / 3 * 4 + 1;
}

// Text that ICU cannot convert goes out as it is, whatever size its conversion would have.
std::uint64_t bound(const header_value &value, std::uint64_t converted) {
    converted = std::max<std::uint64_t>(converted, value.text.size());
    return value.how == encoding::q_words ? bound_q_words(value, converted) : bound_b_words(value, converted);
}

// The documented formula wherever it is enough, else what the value really needs.
std::int32_t estimate(const header_value &value) {
    if (value.how == encoding::none)
        return saturate(value.text.size() + 1);
    const auto converted = static_cast<std::uint64_t>(result_size(value.pair, value.text.size()));
    const std::uint64_t formula = 4 * converted + std::strlen(value.charset) + 8;
    if (bound(value, converted) <= formula)
        return saturate(formula);
    return size_or_need(formula, [&](output &counted) { put_value(value, counted); });
}

} // namespace
} // namespace zel

using namespace zel;

int32_t ZEL_LocalToInternetMessageHeader(const char *language, const char *from_charset, char *text,
                                         char *to_buf, int32_t to_size) {
    require_started();
    output to = output_to(to_buf, to_size);
    if (!text || !*text)
        return finish(to);
    const header_value value = value_of(language, from_charset, text);
    if (to_size < 0)
        return estimate(value);
    put_value(value, to);
    return finish(to);
}

int32_t ZEL_UTF8ToInternetMessageHeader(const char *language, char *text, char *to_buf, int32_t to_size) {
    return ZEL_LocalToInternetMessageHeader(language, encUTF8, text, to_buf, to_size);
}
