// Quoted-printable bodies, the texts of encoded words, and what is kept of both in a buffer that is too
// small.

#include "support.h"

#include "zel/base/escapes.h"
#include "zel/codec/base64.h"
#include "zel/codec/quoted_printable.h"

#include <random>

namespace {

using namespace zel;
using namespace std::string_literals;

constexpr const char *charset = "iso-8859-15";

// All of the text, whose length is found by counting first.
std::string encoded(std::string_view text, bool q_mode) {
    const exact_buffer from(text);
    output counted = counting_output();
    EXPECT_EQ(mime_encode_qp_src(from.bytes(), counted, q_mode, q_mode ? charset : nullptr), 0);
    const exact_buffer to(counted.length + 1);
    output written = output_to(to.data(), to.length());
    EXPECT_EQ(mime_encode_qp_src(from.bytes(), written, q_mode, q_mode ? charset : nullptr), 0);
    EXPECT_EQ(finish(written), to.length() - 1);
    return to.text();
}

const std::string opening = "=?iso-8859-15?Q?", next_word = "?=\r\n\t" + opening;

TEST(QuotedPrintable, leaves_few_bytes_as_they_are) {
    const std::string literals = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789!*+-/";
    for (unsigned value = 0; value < 256; ++value) {
        const std::string byte(1, static_cast<char>(value));
        const std::string triple = {'=', hexdigits[value >> 4], hexdigits[value & 15]};
        std::string in_body = (literals + "() \t").find(byte) != std::string::npos ? byte : triple;
        std::string in_word = literals.find(byte) != std::string::npos ? byte : triple;
        if (value == ' ' || value == '\t')
            in_word = '_';
        if (value == '\r' || value == '\n')
            in_body = in_word = "\r\n";
        EXPECT_EQ(encoded(byte, false), in_body);
        EXPECT_EQ(encoded(byte, true), opening + in_word + "?=");
    }
}

struct row {
    std::string in, out;
};

TEST(QuotedPrintable, bodies_protect_blanks_at_a_line_end_and_break_long_lines) {
    const std::string x(72, 'x');
    const row rows[] = {{"", ""},
                        {"(x)=1.", "(x)=3D1=2E"},
                        {"a\rb\nc\r\n\n\r", "a\r\nb\r\nc\r\n\r\n\r\n"},
                        {"abc \r\n", "abc =\r\n\r\n"},
                        {"\t\n \r", "\t=\r\n\r\n =\r\n\r\n"},
                        {" a\n =\n ", " a\r\n =3D\r\n "},
                        {x, x},
                        {x + "x", x + "x=\r\n"},
                        {x + "==", x + "=3D=\r\n=3D"},
                        {x + " \n", x + " =\r\n\r\n"},
                        {x + "\n" + x + "x", x + "\r\n" + x + "x=\r\n"}};
    for (const auto &[in, out] : rows)
        EXPECT_EQ(encoded(in, false), out) << in;
}

TEST(QuotedPrintable, words_close_at_their_limit_but_not_at_a_line_end) {
    const std::string x(59, 'x');
    const row rows[] = {{"", opening + "?="},
                        {"\xDF \xF6ln", opening + "=DF_=F6ln?="},
                        {"a\t(\r\nb \n", opening + "a_=28\r\nb_\r\n?="},
                        {x, opening + x + "?="},
                        {x + "x", opening + x + "x?=\r\n"},
                        {x + " y", opening + x + "_" + next_word + "y?="},
                        {x + "\xE9\n", opening + x + "=E9" + next_word + "\r\n?="},
                        {x + "\n" + x + "xx", opening + x + "\r\n" + x + "x" + next_word + "x?="}};
    for (const auto &[in, out] : rows)
        EXPECT_EQ(encoded(in, true), out) << in;
}

// A text may end behind a character, a triple or a line break, the soft one included.
std::string whole_units(const std::string &text, std::size_t room) {
    std::size_t end = 0;
    while (end < text.size()) {
        const std::size_t unit = text[end] == '=' ? 3 : text[end] == '\r' ? 2 : 1;
        if (end + unit > room)
            break;
        end += unit;
    }
    return text.substr(0, end);
}

std::string whole_words(const std::string &text, std::size_t room) {
    if (text.size() <= room)
        return text;
    const std::size_t last = room < 2 ? std::string::npos : text.rfind("?=\r\n", room - 2);
    return last == std::string::npos ? "" : text.substr(0, last + 2);
}

void expect_cut_at_every_size(std::string_view text, bool q_mode) {
    const std::string whole = encoded(text, q_mode);
    for_every_size(static_cast<std::int32_t>(whole.size()) + 1, [&](const exact_buffer &buf) {
        output to = output_to(buf.data(), buf.length());
        EXPECT_EQ(mime_encode_qp_src(text, to, q_mode, charset),
                  buf.size() > whole.size() || whole.empty() ? 0 : -1);
        finish(to);
        const std::size_t room = buf.size() ? buf.size() - 1 : 0;
        EXPECT_EQ(std::string_view(buf.data(), to.length),
                  q_mode ? whole_words(whole, room) : whole_units(whole, room));
        EXPECT_TRUE(buf.size() == 0 || buf.text().size() == to.length);
    });
}

TEST(QuotedPrintable, ends_behind_the_last_whole_unit_or_word_where_there_is_no_room_for_all) {
    const std::string high(41, '\xE9');
    for (const std::string &text :
         {""s, "a b\xE9\r\n \n"s, high, std::string(73, 'x'), high + " \r\n" + high})
        for (const bool q_mode : {false, true})
            expect_cut_at_every_size(text, q_mode);
}

using decoder = std::size_t(std::string_view, char *);

// Units by chance behind each other, so that each stands at every place of a wide step. A row that gives
// nothing ends the text.
void expect_units(decoder &decode, const std::vector<row> &units, const std::vector<row> &ends) {
    std::mt19937 random;
    for (int turn = 0; turn < 3000; ++turn) {
        row whole;
        for (auto count = random() % 40; count > 0; --count) {
            const row &unit = units[random() % units.size()];
            whole = {whole.in + unit.in, whole.out + unit.out};
        }
        const row &end = ends[random() % ends.size()];
        const exact_buffer from(whole.in + end.in), to(from.size() + decoding_slack);
        const std::size_t length = decode(from.bytes(), to.data());
        ASSERT_EQ(std::string_view(to.data(), length), whole.out + end.out) << from.bytes();
    }
}

TEST(WordDecoding, q_text_decodes_alike_wherever_it_stands) {
    const std::string run(50, 'x');
    expect_units(decode_q,
                 {{"x", "x"},
                  {"_", " "},
                  {"?", "?"},
                  {run, run},
                  {"=41", "A"},
                  {"=e9=E9", "\xE9\xE9"},
                  {"==4", "\x04"},
                  {"=4=", "@"}},
                 {{"", ""}, {"=", "="}, {"=_", "=_"}, {"==", "=="}, {"=00x", ""}, {"x=gGx_x=41", "x"}});
}

TEST(WordDecoding, b_text_decodes_alike_wherever_it_stands) {
    expect_units(decode_b,
                 {{"YWJj", "abc"}, {"//79", "\xFF\xFE\xFD"}, {"YQ==", "a"}, {"Y!=x", "`"}, {"YWI=", "ab"}},
                 {{"", ""},
                  {"YWJ", ""},
                  {"YQBi", "a"},
                  {"YWIAYWJj", "ab"},
                  {"=WJjYWJj", "\x01"
                               "bcabc"}});
}

} // namespace
