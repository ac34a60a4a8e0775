// Calls every function that takes text with texts that look worst to it, at two sizes of which one is twice
// the other, and conversions with two texts of one size: letters alone, and letters in turn with ASCII. It
// leaves the count of instructions of each call to callgrind. linear_time.sh runs it and compares.

#include "zel.hpp"

#include <valgrind/callgrind.h>

#include <functional>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace std::placeholders;

constexpr std::size_t half = 16 * 1024;

constexpr const char *patterns[] = {
    // encoded words and parameters
    "=?", "?=", "=?utf-8?Q?", "=?utf-8?Q?a?=", "=?utf-8?B?w7w=?=\r\n ", "%", "%41", "'", "\"", "\r\n ", "\r",
    " ", ",", "=", "&", "&-", "a", "\\",
    // escape sequences
    "~", "~{", "~{!!~}", "\x1B", "\x1B$B", "\x1B$B!!\x1B(B", "\x0E\x0F", "\x1B$)C\x0E!",
    // characters of several charsets
    "\xE3\x81\x82", "あ ", "\xC3\xA9", "\xF0\x9F\x98\x80", "\xA4\xA2", "\xA4 ", "\xE9",
    "abc defg \xE3\x81\x82 ",
    // marks on one letter
    "\u0301\u0316", "\u0F71", "\u0F75\u0F71\u0316", "\u0307", "\U0001D165\U0001D16D"};

std::vector<char> room(512 * half);
const auto room_size = static_cast<std::int32_t>(room.size());

using call = std::function<void(char *text, std::int32_t length)>;

// Asks for the size, takes the whole, and then half of it.
call in_all_sizes(const std::function<std::int32_t(char *text, char *to, std::int32_t size)> &write) {
    return [=](char *text, std::int32_t) {
        const std::int32_t need = write(text, room.data(), -1);
        if (need < 0)
            return;
        write(text, room.data(), need + 1);
        write(text, room.data(), need / 2);
    };
}

call converting(const char *from, const char *to) {
    return [=](char *text, std::int32_t length) {
        const std::int32_t need = ZEL_GetResultBufferSize(text, length, from, to);
        ZEL_ConvertBuffer(from, to, text, length, room.data(), need);
        ZEL_ConvertBuffer(from, to, text, length, room.data(), need / 4);
        ZEL_Free(ZEL_LocalToLocal(text, from, to));
        char *result = nullptr;
        ZEL_ConvertBufferArray(from, to, &text, 1, &result);
        ZEL_Free(result);
    };
}

call directly(decltype(&hz2gb) convert) {
    return std::bind(convert, _1, _2, room.data(), room_size);
}

void tags(char *text, std::int32_t) {
    ZEL_GetIntLanguageID(text);
    ZEL_GetIntLanguageID_strict(text);
    ZEL_WorstCaseMultiplier(text, 1, 1);
    ZEL_GetOffsetToNextChar(41, text, 'a');
    ZEL_AcceptLangList(text, reinterpret_cast<char(*)[18]>(room.data()));
    ZEL_NormalizeLocale(&text);
    check_l10n_dir(text);
}

void policies(char *text, std::int32_t) {
    ZEL_HTTPContentCharset(text);
    ZEL_InternetMessageCharset(text, text);
    ZEL_InternetMessageContentTransferEncoding("de", text, 1);
    ZEL_IsInternetMessageKnownCharset("de", text);
    ZEL_EncodingConverterExists(text, "UTF-8");
}

void strings(char *text, std::int32_t) {
    ZEL_Free(ZEL_LocalToUTF8(text, "iso-8859-1"));
    ZEL_Free(ZEL_UTF8ToLocal(text, "iso-8859-1"));
    ZEL_Free(ZEL_LocalToMUTF7(text, "UTF-8"));
    ZEL_Free(ZEL_MUTF7ToLocal(text, "UTF-8"));
    ZEL_Free(ZEL_UTF8ToEscapedUnicode(text, 0));
    ZEL_Free(ZEL_UTF8ToEscapedUnicode(text, 1));
}

void vcards(char *text, std::int32_t) {
    ZEL_Free(ZEL_LocalToVCard21("de", "UTF-8", text));
    ZEL_Free(ZEL_LocalToVCard21("ja", "UTF-8", text));
}

void validity(char *text, std::int32_t) {
    ZEL_IsASCIIString(text);
    for (const char *charset : {"euc-jp", "Shift_JIS", "big5"})
        ZEL_CheckStringValidity(charset, text);
}

// With a difference at the end and with one at the front that what follows may outweigh.
call comparing(const char *language) {
    return [=](char *text, std::int32_t) {
        const std::string whole = text;
        ZEL_CompareStrings(language, "UTF-8", text, (whole + "x").c_str());
        ZEL_CompareStrings(language, "UTF-8", ("a" + whole).c_str(), ("A" + whole).c_str());
        ZEL_CompareMessageHeaderStrings(language, "UTF-8", text, (whole + "x").data());
    };
}

void dates(char *text, std::int32_t) {
    std::int32_t hours = 0, minutes = 0;
    ZEL_TimeZoneToOffset(text, 0, &hours, &minutes);
    ZEL_Free(ZEL_GenerateDateString("de", text, 1719450900, "UTF-8"));
}

void readers(char *text, std::int32_t length) {
    zel::read_header(text);
    zel::read_body("iso-2022-jp", text);
    std::string parts = text;
    for (std::int32_t left = length; left > 0; left -= 8)
        parts += ";a*" + std::to_string(left * 7919 % length) + "*=%41";
    zel::read_parameter(parts, "a");
}

void writers(char *text, std::int32_t) {
    try {
        zel::write_header("de", text);
        zel::write_parameter("ja", "filename", text);
        zel::write_body("de", text);
    } catch (const zel::error &) { // of a text that is not UTF-8
    }
}

constexpr auto header_out = ZEL_LocalToInternetMessageHeader;
constexpr auto header_in = ZEL_InternetMessageHeaderToLocal;
constexpr auto parameter_out = ZEL_LocalToRFC2231;
constexpr auto body_out = ZEL_LocalToInternetMessageBody;
constexpr auto body_in = ZEL_InternetMessageBodyLocalToLocal;

const struct function {
    const char *name;
    call calls;
} functions[] = {
    {"buffers, UTF-8 to Shift_JIS", converting("UTF-8", "Shift_JIS")},
    {"buffers, Shift_JIS to UTF-8", converting("Shift_JIS", "UTF-8")},
    {"buffers, UTF-8 to ISO-2022-JP", converting("UTF-8", "iso-2022-jp")},
    {"buffers, ISO-2022-JP to UTF-8", converting("iso-2022-jp", "UTF-8")},
    {"buffers, HZ to UTF-8", converting("hz-gb-2312", "UTF-8")},
    {"buffers, Big5 to GB 2312", converting("big5", "gb2312")},
    {"eucjp2jis", directly(eucjp2jis)},
    {"jis2eucjp", directly(jis2eucjp)},
    {"sjis2jis", directly(sjis2jis)},
    {"jis2sjis", directly(jis2sjis)},
    {"iso2022kr2euckr", directly(iso2022kr2euckr)},
    {"hz2gb", directly(hz2gb)},
    {"big2gb", directly(big2gb)},
    {"gb2big5", directly(gb2big5)},
    {"header out, de", in_all_sizes(std::bind(header_out, "de", "UTF-8", _1, _2, _3))},
    {"header out, ja", in_all_sizes(std::bind(header_out, "ja", "UTF-8", _1, _2, _3))},
    {"header out, ja from Shift_JIS", in_all_sizes(std::bind(header_out, "ja", "Shift_JIS", _1, _2, _3))},
    {"header out, zh-TW from Big5", in_all_sizes(std::bind(header_out, "zh-TW", "big5", _1, _2, _3))},
    {"header in, de", in_all_sizes(std::bind(header_in, "de", _1, "UTF-8", _2, _3))},
    {"header in, ja to UTF-8", in_all_sizes(std::bind(header_in, "ja", _1, "UTF-8", _2, _3))},
    {"header in, ja to Shift_JIS", in_all_sizes(std::bind(header_in, "ja", _1, "Shift_JIS", _2, _3))},
    {"parameter out, de", in_all_sizes(std::bind(parameter_out, "de", "filename", "UTF-8", _1, _2, _3))},
    {"parameter out, ja", in_all_sizes(std::bind(parameter_out, "ja", "filename", "UTF-8", _1, _2, _3))},
    {"name of a parameter", in_all_sizes(std::bind(parameter_out, "de", _1, "UTF-8", "long: é", _2, _3))},
    {"parameter in", in_all_sizes(std::bind(ZEL_RFC2231ToLocal, nullptr, _1, "Shift_JIS", _2, _3))},
    {"parameter in, ja", in_all_sizes([](const char *text, char *to, std::int32_t size) {
         const std::string value = std::string("iso-2022-jp'ja'") + text;
         return ZEL_RFC2231ToLocal(nullptr, value.c_str(), "Shift_JIS", to, size);
     })},
    {"body out, de", in_all_sizes(std::bind(body_out, "de", "UTF-8", _1, _2, _3, 1))},
    {"body out, ja", in_all_sizes(std::bind(body_out, "ja", "UTF-8", _1, _2, _3, 1))},
    {"body out, ja from EUC-JP", in_all_sizes(std::bind(body_out, "ja", "euc-jp", _1, _2, _3, 1))},
    {"body out, ko", in_all_sizes(std::bind(body_out, "ko", "UTF-8", _1, _2, _3, 1))},
    {"body in, ja", in_all_sizes(std::bind(body_in, "ja", "iso-2022-jp", 0, _1, "euc-jp", _2, _3))},
    {"body in, ja to UTF-8", in_all_sizes(std::bind(body_in, "ja", "iso-2022-jp", 0, _1, "UTF-8", _2, _3))},
    {"body in, zh-CN from HZ",
     in_all_sizes(std::bind(body_in, "zh-CN", "hz-gb-2312", 0, _1, "gb2312", _2, _3))},
    {"tags", tags},
    {"policies", policies},
    {"strings", strings},
    {"Base64", std::bind(ZEL_ApplyBase64Encoding, _1, _2, room.data(), room_size)},
    {"vCard values", vcards},
    {"validity", validity},
    {"comparison, de", comparing("de")},
    {"comparison, lt", comparing("lt")},
    {"dates", dates},
    {"readers", readers},
    {"writers", writers},
};

// Of twice the size are twice as many, so both texts end alike.
std::string text_of(std::string_view pattern, std::size_t size) {
    std::string text;
    for (std::size_t count = size / half * (half / pattern.size() & ~3U); count > 0; --count)
        text += pattern;
    return text;
}

void run(const call &measured, std::string text) {
    measured(text.data(), static_cast<std::int32_t>(text.size()));
}

void count(const std::string &label, const call &measured, std::string text) {
    CALLGRIND_ZERO_STATS;
    run(measured, std::move(text));
    CALLGRIND_DUMP_STATS_AT(label.c_str());
}

void count_growth(const function &measured) {
    for (const char *pattern : {"あ ", "é\x83"}) // what is opened or built once does not count
        run(measured.calls, text_of(pattern, 8 * half));
    for (std::size_t pattern = 0; pattern < std::size(patterns); ++pattern)
        for (const std::size_t times : {1U, 2U})
            count(measured.name + ("|" + std::to_string(pattern) + "|" + std::to_string(times)),
                  measured.calls, text_of(patterns[pattern], times * half));
}

const struct letter_of_pair {
    const char *from, *to, *letter;
} letters[] = {
    {"UTF-8", "Shift_JIS", "漢"},    {"Shift_JIS", "UTF-8", "\x8A\xBF"}, {"UTF-8", "EUC-KR", "한"},
    {"EUC-KR", "UTF-8", "\xC7\xD1"}, {"UTF-8", "iso-8859-1", "ä"},       {"iso-8859-1", "UTF-8", "\xE4"},
    {"UTF-8", "iso-8859-5", "Ж"},    {"iso-8859-5", "UTF-8", "\xB6"},
};

void count_rhythm(const letter_of_pair &of) {
    const call convert = std::bind(ZEL_ConvertBuffer, of.from, of.to, _1, _2, room.data(), room_size);
    const std::string letter = of.letter;
    for (int times = 0; times < 2; ++times) // opens converters, and builds the table
        run(convert, text_of(letter, 8 * half));
    const std::string label = std::string("rhythm|") + of.from + " to " + of.to;
    count(label + "|1", convert, text_of(letter, half));
    count(label + "|2", convert, text_of(letter + "a", half));
}

} // namespace

// Takes the share of the functions that is counted, as two numbers: which one, of how many.
int main(int, char **numbers) {
    const std::size_t first = std::stoul(numbers[1]), step = std::stoul(numbers[2]);
    const ZELConfig config = {0, 0, 0, "/nowhere"};
    ZEL_Initialize("/nowhere", &config);
    for (std::size_t i = first; i < std::size(functions); i += step)
        count_growth(functions[i]);
    for (std::size_t i = first; i < std::size(letters); i += step)
        count_rhythm(letters[i]);
    return 0;
}
