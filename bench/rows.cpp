#include "rows.h"

#include <zel.h>

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

void add_strings_and_threads(std::vector<row> &rows, const std::string &from, const std::string &to,
                             const std::string &alphabet) {
    add(rows, "string, " + from + " > " + to, {{ascii, mixed, dense}, {line}, from, {alphabet}}, all(.60),
        [=] { return beside(convert_string(from, to), string_neighbours(from, to)); });
    add(rows, "two threads, " + from + " > " + to, {{mixed}, {line, page}, from, {alphabet}}, all(1.15), [=] {
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
        add(rows, what + locale, from, all(.90), subjects, {}, join);
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

} // namespace

std::vector<row> all_rows() {
    std::vector<row> rows;
    add_byte_work(rows);
    add_conversions(rows, {"Shift_JIS", "GB2312", "EUC-JP", "ISO-8859-1", "windows-1252"}, {ascii},
                    {.60, .10, .10}, {.60, .10, .10});
    add_conversions(rows, {"Shift_JIS", "GB2312", "EUC-KR", "Big5", "EUC-JP"}, {mixed, dense},
                    {.60, .30, .60}, {.60, .20, .25});
    add_conversions(rows, {"ISO-8859-1", "ISO-8859-2", "ISO-8859-5", "ISO-8859-7", "windows-1252"},
                    {mixed, dense}, {.60, .50, .50}, {.60, .50, .50});
    add_conversions(rows, {"ISO-2022-JP"}, {mixed, dense}, {.60, .30, .30}, {.60, .30, .30});
    for (const std::string charset : {"Shift_JIS", "EUC-KR", "ISO-8859-1", "windows-1252"}) {
        add_strings_and_threads(rows, "UTF-8", charset, charset);
        add_strings_and_threads(rows, charset, "UTF-8", charset);
    }
    add_strings_and_threads(rows, "windows-1252", "ISO-8859-15", "ISO-8859-15");
    add_direct_converters(rows);
    add_quoted_printable(rows, "pl", "ISO-8859-2");
    add_quoted_printable(rows, "ru", "ISO-8859-5");
    add_quoted_printable(rows, "ko", "EUC-KR");
    add_headers(rows, "el", "ISO-8859-7"); // whose words GMime writes in no other charset
    add_headers(rows, "ru", "ISO-8859-5");
    add_headers(rows, "ko", "EUC-KR");
    add_headers(rows, "ja", "ISO-2022-JP");
    for (const std::string charset : {"EUC-JP", "EUC-KR", "GB2312", "Shift_JIS", "Big5"})
        add_validity(rows, charset);
    add_comparisons(rows, "de", "ISO-8859-1");
    add_comparisons(rows, "ja", "Shift_JIS");
    return rows;
}

} // namespace bench
