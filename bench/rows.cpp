#include "rows.h"

#include <zel.h>

#include <cstdint>
#include <cstring>

namespace bench {
namespace {

using enum text_kind;
using namespace std::string_literals;
using charset_list = std::vector<std::string>;
using size_list = std::vector<std::size_t>;

constexpr std::size_t line = 100;
constexpr std::size_t page = 4096;
constexpr std::size_t file = 1024 * 1024;
const size_list all_sizes = {line, page, file};

struct goals {
    double line; // at 100 bytes
    double mixed;
    double dense; // and ASCII
};

goals all(double goal) {
    return {goal, goal, goal};
}

// The texts that rows of one kind differ in.
struct source {
    std::vector<text_kind> kinds;
    size_list sizes;
    std::string charset;
    charset_list alphabet;
    text_shape shape = text_shape::body;
};

using subject_maker = std::function<std::vector<subject>()>;
using text_change = std::function<void(text_pool &)>;

std::string describe(text_kind kind, std::size_t size) {
    return (kind == ascii   ? ", ascii, "s
            : kind == mixed ? ", mixed, "s
                            : ", dense, "s) +
           (size == line   ? "100 B"
            : size == page ? "4 KiB"
                           : "1 MiB");
}

// The change makes the texts into what the subjects take.
void add(std::vector<row> &rows, const std::string &what, const source &from, const goals &goal,
         const subject_maker &subjects, const trial::reading &meaning = {}, const text_change &change = {}) {
    for (const text_kind kind : from.kinds)
        for (const std::size_t size : from.sizes) {
            const auto prepare = [=] {
                trial made = {make_texts({kind, size, from.charset, from.alphabet, from.shape}), subjects(),
                              meaning};
                if (change)
                    change(made.texts);
                return made;
            };
            const double by_kind = kind == mixed ? goal.mixed : goal.dense;
            rows.push_back({what + describe(kind, size), size == line ? goal.line : by_kind, prepare});
        }
}

std::vector<subject> beside(const work &own, std::vector<subject> neighbours) {
    neighbours.insert(neighbours.begin(), {"libzel", own});
    return neighbours;
}

subject_maker duel(const work &own, const std::string &name, const work &neighbour) {
    return [=] { return beside(own, {{name, neighbour}}); };
}

// A function of the library that takes a text with its length, and a buffer with its size.
template <class Function>
work filling(Function fill) {
    return [=](std::string &text, scratch &to) -> result {
        return {to.bytes.data(), fill(text.data(), static_cast<std::int32_t>(text.size()), to.bytes.data(),
                                      static_cast<std::int32_t>(to.bytes.size()))};
    };
}

// With the room that the library asks for.
work convert_buffer(const std::string &from_charset, const std::string &to_charset) {
    const std::string sample(1000, ' ');
    const auto sample_size = static_cast<std::int32_t>(sample.size());
    const std::int32_t factor =
        ZEL_GetResultBufferSize(sample.data(), sample_size, from_charset.c_str(), to_charset.c_str()) /
        sample_size;
    return filling([=](const char *from, std::int32_t len, char *to, std::int32_t) {
        return ZEL_ConvertBuffer(from_charset.c_str(), to_charset.c_str(), from, len, to, factor * len + 1);
    });
}

work convert_string(const std::string &from_charset, const std::string &to_charset) {
    return [=](const std::string &text, scratch &to) -> result {
        to.string.reset(ZEL_LocalToLocal(text.c_str(), from_charset.c_str(), to_charset.c_str()));
        return {to.string.get(), -1};
    };
}

void add_conversions(std::vector<row> &rows, const charset_list &charsets,
                     const std::vector<text_kind> &kinds, const goals &from_utf8, const goals &to_utf8) {
    for (const std::string &charset : charsets) {
        const auto pair = [&](const std::string &from, const std::string &to, const goals &goal) {
            add(rows, from + " > " + to, {kinds, all_sizes, from, {charset}}, goal,
                [=] { return beside(convert_buffer(from, to), converting_neighbours(from, to)); });
        };
        pair("UTF-8", charset, from_utf8);
        pair(charset, "UTF-8", to_utf8);
    }
}

struct charset_pair {
    std::string from;
    std::string to;
    std::string alphabet;
};

const charset_pair common_pairs[] = {
    {"UTF-8", "Shift_JIS", "Shift_JIS"},
    {"Shift_JIS", "UTF-8", "Shift_JIS"},
    {"UTF-8", "EUC-KR", "EUC-KR"},
    {"EUC-KR", "UTF-8", "EUC-KR"},
    {"UTF-8", "ISO-8859-1", "ISO-8859-1"},
    {"ISO-8859-1", "UTF-8", "ISO-8859-1"},
    {"UTF-8", "windows-1252", "windows-1252"},
    {"windows-1252", "UTF-8", "windows-1252"},
    {"windows-1252", "ISO-8859-15", "ISO-8859-15"},
};

void add_strings(std::vector<row> &rows) {
    for (const auto &[from, to, alphabet] : common_pairs)
        add(rows, "string, " + from + " > " + to, {{ascii, mixed, dense}, {line}, from, {alphabet}}, all(.60),
            [from = from, to = to] { return beside(convert_string(from, to), string_neighbours(from, to)); });
}

void add_threads(std::vector<row> &rows) {
    for (const auto &[from, to, alphabet] : common_pairs)
        add(rows, "two threads, " + from + " > " + to, {{mixed}, {line, page}, from, {alphabet}}, all(1.15),
            [from = from, to = to] {
                const work convert = convert_buffer(from, to);
                return std::vector<subject>{{"libzel", convert, 2}, {"one thread", convert}};
            });
}

// ICU shifts back to ASCII before anything else, which RFC 1843 has no need of.
void open_in_ascii(text_pool &texts) {
    for (std::string &text : texts)
        if (text.starts_with("~}"))
            text.erase(0, 2);
}

void add_direct_converters(std::vector<row> &rows) {
    const charset_list japanese = {"Shift_JIS", "EUC-JP", "ISO-2022-JP"};
    const charset_list chinese = {"Big5", "GB2312"};
    using converter = int32_t(const char *, int32_t, char *, int32_t);
    const auto direct = [&](const std::string &name, converter *convert, const std::string &from,
                            const std::string &to, const charset_list &alphabet, double goal,
                            const trial::reading &meaning = {}, const text_change &change = {}) {
        const auto subjects = [=] { return beside(filling(convert), converting_neighbours(from, to)); };
        add(rows, name, {{mixed, dense}, all_sizes, from, alphabet}, all(goal), subjects, meaning, change);
    };
    const auto length_alone = [](const std::string &text) { return std::string(text.size(), '.'); };
    direct("sjis2jis", sjis2jis, "Shift_JIS", "ISO-2022-JP", japanese, .06);
    direct("eucjp2jis", eucjp2jis, "EUC-JP", "ISO-2022-JP", japanese, .06);
    direct("jis2sjis", jis2sjis, "ISO-2022-JP", "Shift_JIS", japanese, .15);
    direct("jis2eucjp", jis2eucjp, "ISO-2022-JP", "EUC-JP", japanese, .15);
    direct("big2gb", big2gb, "Big5", "GB2312", chinese, .40, length_alone); // which simplifies as well
    direct("gb2big5", gb2big5, "GB2312", "Big5", chinese, .40, length_alone);
    direct("hz2gb", hz2gb, "HZ", "GB2312", {"GB2312"}, .10, {}, open_in_ascii);
    direct("iso2022kr2euckr", iso2022kr2euckr, "ISO-2022-KR", "EUC-KR", {"EUC-KR"}, .10);
}

std::string without(std::string text, std::string_view bytes) {
    std::erase_if(text, [=](char byte) { return bytes.find(byte) != bytes.npos; });
    return text;
}

// Blanks between encoded words are no part of the text, and line ends are as each library writes them.
std::string words_of(const std::string &text) {
    return without(text, " \t\r\n");
}

void add_quoted_printable(std::vector<row> &rows, const std::string &language, const std::string &charset) {
    const work encode = filling([=](const char *from, std::int32_t, char *to, std::int32_t size) {
        return ZEL_LocalToInternetMessageBody(language.c_str(), charset.c_str(), from, to, size, 1);
    });
    const source from = {{mixed, dense}, all_sizes, charset, {charset}};
    const auto meaning = [](const std::string &text) { return words_of(decode_quoted_printable(text)); };
    add(rows, "quoted-printable, " + language, from, all(.40),
        duel(encode, "GMime", gmime_quoted_printable()), meaning);
}

void add_headers(std::vector<row> &rows, const std::string &language, const std::string &charset) {
    const work out = filling([=](char *from, std::int32_t, char *to, std::int32_t size) {
        return ZEL_UTF8ToInternetMessageHeader(language.c_str(), from, to, size);
    });
    const work in = [=](const std::string &text, scratch &to) {
        to.copy = text; // which is unfolded
        return filling([=](char *from, std::int32_t, char *to_buf, std::int32_t size) {
            return ZEL_InternetMessageHeaderToUTF8(language.c_str(), from, to_buf, size);
        })(to.copy, to);
    };
    const auto send = [=](text_pool &texts) {
        scratch to(texts.front().size() * 2);
        for (std::string &text : texts)
            text = text_of(out(text, to));
    };
    const source from = {{mixed, dense}, {line, page}, "UTF-8", {charset}, text_shape::header};
    const auto meaning = [=](std::string text) {
        scratch to(text.size());
        return words_of(text_of(in(text, to)));
    };
    add(rows, "header out, " + language, from, all(.30), duel(out, "GMime", gmime_header_encoding(charset)),
        meaning);
    add(rows, "header in, " + language, from, all(.45), duel(in, "GMime", gmime_header_decoding()), words_of,
        send);
}

void add_validity(std::vector<row> &rows, const std::string &charset) {
    const work check = [=](std::string &text, scratch &) -> result {
        ZEL_CheckStringValidity(charset.c_str(), text.data());
        return {text.data(), static_cast<std::ptrdiff_t>(text.size())};
    };
    add(rows, "validity, " + charset, {{mixed, dense}, all_sizes, charset, {charset}}, all(.25),
        duel(check, "ICU to UTF-16", icu_decoding(charset)));
}

void add_comparisons(std::vector<row> &rows, const std::string &locale, const std::string &charset) {
    const work compare = [=](const std::string &texts, scratch &to) {
        const char *second = texts.c_str() + std::strlen(texts.c_str()) + 1;
        return answer(ZEL_CompareStrings(locale.c_str(), charset.c_str(), texts.c_str(), second), to);
    };
    const source from = {{mixed, dense}, {line, page}, charset, {charset}};
    const auto subjects = duel(compare, "ICU opened", icu_comparison(locale, charset));
    for (const std::size_t step : {0U, 1U}) {
        const auto join = [=](text_pool &texts) {
            const text_pool singles = texts;
            for (std::size_t i = 0; i < texts.size(); ++i)
                texts[i] += '\0' + singles[(i + step) % singles.size()];
        };
        const std::string what = step == 0 ? "comparison of equals, " : "comparison, ";
        add(rows, what + locale, from, {.72, .90, .90}, subjects, {}, join);
    }
}

void add_byte_work(std::vector<row> &rows) {
    const auto plain = [&](const std::string &what, text_kind kind, const goals &goal, const work &own,
                           const std::vector<subject> &neighbours, const trial::reading &meaning = {}) {
        add(
            rows, what, {{kind}, all_sizes, "UTF-8", {"ISO-8859-1"}}, goal,
            [=] { return beside(own, neighbours); }, meaning);
    };
    const work copy = [](const std::string &text, scratch &to) -> result {
        return {static_cast<char *>(std::memcpy(to.bytes.data(), text.data(), text.size())), 0};
    };
    const work measure = [](const std::string &text, scratch &) -> result {
        return {text.data(), static_cast<std::ptrdiff_t>(std::strlen(text.c_str()))};
    };
    const work is_7bit = [](const std::string &text, scratch &to) {
        return answer(ZEL_IsASCIIString(text.c_str()), to);
    };
    plain("limit: memcpy", ascii, {}, copy, {});
    plain("limit: strlen", ascii, {}, measure, {});
    plain("7-bit test", ascii, all(.10), is_7bit, {{"GMime", gmime_7bit_test()}});
    plain("Base64", mixed, {.30, .15}, filling(ZEL_ApplyBase64Encoding), base64_neighbours(),
          [](const std::string &text) { return without(text, "\r\n"); });
}

enum class way { from_utf8, to_utf8 };

// The texts are made in UTF-8.
row convert_row(const std::string &what, way direction, const std::string &charset, const std::string &size,
                double goal, const std::function<text_pool()> &texts) {
    const bool is_back = direction == way::to_utf8;
    const std::string from = is_back ? charset : "UTF-8";
    const std::string to = is_back ? "UTF-8" : charset;
    return {what + ", " + from + " > " + to + ", " + size, goal, [=] {
                return trial{is_back ? encode_texts(texts(), charset) : texts(),
                             beside(convert_buffer(from, to), converting_neighbours(from, to)),
                             {}};
            }};
}

struct sentence {
    std::string charset;
    std::string letter;
    std::string text;
};

const sentence sentences[] = {
    {"Shift_JIS", "漢", "明日の会議は午後3時から、第2会議室で行います。"},
    {"ISO-2022-JP", "漢", "明日の会議は午後3時から、第2会議室で行います。"},
    {"EUC-KR", "한", "내일 회의는 오후 3시에 2층 회의실에서 시작합니다. "},
    {"GB2312", "中", "明天的会议下午3点在二楼会议室开始,请准时参加。"},
    {"ISO-8859-1", "ä", "Die nächste Sitzung beginnt übermorgen um drei Uhr im größeren Saal. "},
    {"ISO-8859-5", "Ж", "Следующее собрание начнётся завтра в 3 часа в большом зале. "},
    {"ISO-8859-7", "α", "Η επόμενη συνεδρίαση αρχίζει αύριο στις 3 στην αίθουσα 2. "},
};

// Runs of ASCII letters and of others.
constexpr std::pair<int, int> rhythms[] = {{0, 1}, {1, 1}, {2, 1}, {3, 1}, {5, 1}, {9, 1},
                                           {1, 2}, {2, 2}, {4, 2}, {1, 3}, {3, 3}, {1, 4},
                                           {4, 4}, {1, 6}, {6, 6}, {1, 9}, {9, 9}};

std::string rhythm_text(const std::string &letter, int ascii_run, int other_run) {
    std::string text(static_cast<std::size_t>(ascii_run), 'a');
    for (int i = 0; i < other_run; ++i)
        text += letter;
    return text;
}

void add_repeated(std::vector<row> &rows, const std::string &what, way direction, const std::string &charset,
                  const std::string &text) {
    rows.push_back(convert_row(what, direction, charset, "120 B", 1, [=] { return repeat_text(text, 120); }));
    rows.push_back(
        convert_row(what, direction, charset, "4 KiB", 1, [=] { return repeat_text(text, page); }));
}

void add_rhythms(std::vector<row> &rows, way direction) {
    for (const sentence &own : sentences)
        for (const auto &[ascii_run, other_run] : rhythms)
            add_repeated(rows, "rhythm " + std::to_string(ascii_run) + ":" + std::to_string(other_run),
                         direction, own.charset, rhythm_text(own.letter, ascii_run, other_run));
}

void add_sentences(std::vector<row> &rows, way direction) {
    for (const sentence &own : sentences)
        add_repeated(rows, "sentence", direction, own.charset, own.text);
}

struct natural_text {
    std::string language;
    std::string charset;
};

const natural_text natural_texts[] = {
    {"ja", "Shift_JIS"},    {"ja", "EUC-JP"},     {"ja", "ISO-2022-JP"}, {"ko", "EUC-KR"},
    {"zh_CN", "GB2312"},    {"zh_TW", "Big5"},    {"de", "ISO-8859-1"},  {"fr", "ISO-8859-15"},
    {"fr", "windows-1252"}, {"pl", "ISO-8859-2"}, {"tr", "ISO-8859-9"},  {"el", "ISO-8859-7"},
    {"ru", "ISO-8859-5"},   {"ru", "KOI8-R"},
};

void add_natural_lines(std::vector<row> &rows, way direction) {
    for (const natural_text &of : natural_texts)
        rows.push_back(convert_row("natural " + of.language, direction, of.charset, "lines",
                                   direction == way::from_utf8 ? .65 : .50,
                                   [=] { return natural_lines(of.language, of.charset); }));
}

void add_natural_pieces(std::vector<row> &rows, way direction) {
    for (const natural_text &of : natural_texts)
        rows.push_back(convert_row("natural " + of.language, direction, of.charset, "4 KiB",
                                   direction == way::from_utf8 ? .45 : .30,
                                   [=] { return natural_pieces(of.language, of.charset, page); }));
}

void add_sizes(std::vector<row> &rows) {
    const std::pair<std::string, std::string> pairs[] = {
        {"UTF-8", "Shift_JIS"}, {"Shift_JIS", "UTF-8"}, {"UTF-8", "ISO-8859-1"}, {"ISO-8859-1", "UTF-8"}};
    for (const auto &pair : pairs)
        for (std::size_t size = 16; size <= file; size *= 4)
            rows.push_back(
                {"size, " + pair.first + " > " + pair.second + ", " + std::to_string(size) + " B", .70, [=] {
                     const std::string &charset = pair.first == "UTF-8" ? pair.second : pair.first;
                     return trial{make_texts({mixed, size, pair.first, {charset}}),
                                  beside(convert_buffer(pair.first, pair.second),
                                         converting_neighbours(pair.first, pair.second)),
                                  {}};
                 }});
}

const charset_list double_byte = {"Shift_JIS", "GB2312", "EUC-KR", "Big5", "EUC-JP"};

} // namespace

std::vector<group> all_groups() {
    std::vector<group> groups;
    const auto open = [&](const std::string &name, double goal = 0,
                          bool is_brief = false) -> std::vector<row> & {
        groups.push_back({name, goal, is_brief});
        return groups.back().rows;
    };
    add_byte_work(open("7-bit test, Base64"));
    add_conversions(open("ASCII text"), {"Shift_JIS", "GB2312", "EUC-JP", "ISO-8859-1", "windows-1252"},
                    {ascii}, {.60, .10, .10}, {.60, .10, .10});
    add_conversions(open("double-byte charsets"), double_byte, {mixed, dense}, {.60, .30, .60},
                    {.60, .20, .25});
    add_conversions(open("single-byte charsets"),
                    {"ISO-8859-1", "ISO-8859-2", "ISO-8859-5", "ISO-8859-7", "windows-1252"}, {mixed, dense},
                    {.60, .50, .50}, {.60, .50, .50});
    add_conversions(open("ISO-2022-JP"), {"ISO-2022-JP"}, {mixed, dense}, {.60, .30, .30}, {.60, .30, .30});
    add_strings(open("strings"));
    add_threads(open("two threads beside one"));
    add_direct_converters(open("direct converters"));
    std::vector<row> &quoted = open("quoted-printable");
    add_quoted_printable(quoted, "pl", "ISO-8859-2");
    add_quoted_printable(quoted, "ru", "ISO-8859-5");
    add_quoted_printable(quoted, "ko", "EUC-KR");
    std::vector<row> &headers = open("headers");
    add_headers(headers, "el", "ISO-8859-7"); // whose words GMime writes in no other charset
    add_headers(headers, "ru", "ISO-8859-5");
    add_headers(headers, "ko", "EUC-KR");
    add_headers(headers, "ja", "ISO-2022-JP");
    std::vector<row> &validity = open("validity");
    for (const std::string &charset : double_byte)
        add_validity(validity, charset);
    std::vector<row> &comparison = open("comparison");
    add_comparisons(comparison, "de", "ISO-8859-1");
    add_comparisons(comparison, "ja", "Shift_JIS");
    add_sizes(open("sizes, 16 B to 1 MiB"));
    add_natural_lines(open("natural lines, from UTF-8", .48), way::from_utf8);
    add_natural_lines(open("natural lines, to UTF-8", .36), way::to_utf8);
    add_natural_pieces(open("natural 4 KiB, from UTF-8", .28), way::from_utf8);
    add_natural_pieces(open("natural 4 KiB, to UTF-8", .20), way::to_utf8);
    std::vector<row> &repeated = open("sentences", .55);
    add_sentences(repeated, way::from_utf8);
    add_sentences(repeated, way::to_utf8);
    std::vector<row> &regular = open("rhythms", .55, true);
    add_rhythms(regular, way::from_utf8);
    add_rhythms(regular, way::to_utf8);
    return groups;
}

} // namespace bench
