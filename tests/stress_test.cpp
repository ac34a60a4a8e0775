// Eight threads in all families at once, from the first conversion of the process on: converters are opened,
// answers remembered and tables built while others read. Each result has to be what one thread then gets.

#include "rendezvous.h"
#include "support.h"
#include "wire.h"

#include <thread>
#include <vector>

namespace {

struct sample {
    const char *language, *charset, *text;
};

constexpr sample samples[] = {
    {"de", "iso-8859-15", "Übergabe der Schlüssel: 20 €, Grüße aus Köln. "},
    {"pl", "iso-8859-2", "Zażółć gęślą jaźń, zamówienie świąteczne. "},
    {"ru", "iso-8859-5", "Съешь же ещё этих мягких французских булок. "},
    {"el", "iso-8859-7", "Ξεσκεπάζω την ψυχοφθόρα βδελυγμία. "},
    {"th", "tis-620", "เป็นมนุษย์สุดประเสริฐ "},
    {"ja", "Shift_JIS", "会議資料のお知らせ、カナと漢字。 "},
    {"ja", "euc-jp", "年賀状を送りました。テスト "},
    {"ja", "iso-2022-jp", "日本語の件名 abc "},
    {"ko", "euc-kr", "목요일 회의는 아침 아홉 시로 변경되었습니다. "},
    {"zh-CN", "gb2312", "您好，会议改到星期四上午九点。 "},
    {"zh-TW", "big5", "您好，會議改到星期四上午九點。 "},
};

std::string strings(const sample &given) {
    const std::string text = repeated(given.text, 100); // with the other families 3 KB for the pair's table
    const std::string local = taken(ZEL_UTF8ToLocal(text.c_str(), given.charset));
    return local + taken(ZEL_LocalToUTF8(local.c_str(), given.charset)) +
           taken(ZEL_LocalToMUTF7(local.c_str(), given.charset)) +
           taken(ZEL_UTF8ToEscapedUnicode(given.text, 1));
}

std::string direct_converters(const sample &given) {
    const std::string local = taken(ZEL_UTF8ToLocal(given.text, given.charset));
    std::string results;
    for (const auto convert :
         {eucjp2jis, jis2eucjp, sjis2jis, jis2sjis, iso2022kr2euckr, hz2gb, big2gb, gb2big5}) {
        const exact_buffer to(5 * local.size() + 4);
        convert(local.data(), static_cast<int32_t>(local.size()), to.data(), to.length());
        results += to.text();
    }
    return results;
}

std::string headers(const sample &given) {
    const exact_buffer text = exact_string(given.text);
    const std::string wire = in_two_calls([&](char *to, int32_t size) {
        return ZEL_UTF8ToInternetMessageHeader(given.language, text.data(), to, size);
    });
    const auto decode = [&](char *to, int32_t size) {
        const exact_buffer value = exact_string(wire);
        return ZEL_InternetMessageHeaderToLocal(given.language, value.data(), given.charset, to, size);
    };
    return wire + in_two_calls(decode, 1);
}

std::string parameters(const sample &given) {
    const std::string line = in_two_calls([&](char *to, int32_t size) {
        return ZEL_LocalToRFC2231(given.language, "filename", "UTF-8", given.text, to, size);
    });
    return line + in_two_calls([&](char *to, int32_t size) {
               return ZEL_RFC2231ToLocal(nullptr, line.c_str() + std::string("\tfilename*0*=").size(),
                                         given.charset, to, size);
           });
}

std::string bodies(const sample &given) {
    const std::string wire = in_two_calls([&](char *to, int32_t size) {
        return ZEL_UTF8ToInternetMessageBody(given.language, given.text, to, size, 0);
    });
    const auto decode = [&](char *to, int32_t size) {
        return ZEL_InternetMessageBodyToLocal(given.language, 0, wire.c_str(), given.charset, to, size);
    };
    return wire + in_two_calls(decode, 1) + taken(ZEL_LocalToVCard21(given.language, "UTF-8", given.text));
}

std::string policies(const sample &given) {
    std::string answers = ZEL_GetRFC1766LanguageID(ZEL_GetIntLanguageID(given.language));
    for (const char *tag : {given.language, given.charset, given.text})
        answers += std::string(ZEL_HTTPContentCharset(tag)) + ZEL_InternetMessageCharset(tag, given.text);
    return answers + ZEL_InternetMessageContentTransferEncoding(given.language, given.text, 1);
}

std::string locales(const sample &given) {
    const exact_buffer first = exact_string(given.text), second = exact_string("=?utf-8?Q?a?=");
    const int32_t order =
        ZEL_CompareMessageHeaderStrings(given.language, given.charset, first.data(), second.data());
    ZEL_CheckStringValidity(given.charset, first.data());
    return (order < 0 ? '<' : '>') + first.text() +
           taken(ZEL_GenerateDateString(given.language, "Asia/Tokyo", 1719450900, given.charset));
}

constexpr std::string (*families[])(const sample &) = {strings, direct_converters, headers, parameters,
                                                       bodies,  policies,          locales};

// All samples in all families, beginning at another sample for each thread.
std::vector<std::string> all_results(std::size_t first) {
    std::vector<std::string> results(std::size(samples) * std::size(families));
    for (std::size_t i = 0; i < results.size(); ++i) {
        const std::size_t place = (first * std::size(families) + i) % results.size();
        results[place] = families[place % std::size(families)](samples[place / std::size(families)]);
    }
    return results;
}

TEST(Threads, eight_at_once_get_what_one_gets) {
    start_library();
    constexpr std::size_t threads = 8, rounds = 6;
    std::vector<std::vector<std::string>> results(threads * rounds);
    rendezvous start(threads);
    std::vector<std::thread> running;
    for (std::size_t thread = 0; thread < threads; ++thread)
        running.emplace_back([&, thread] {
            start.arrive_and_wait();
            for (std::size_t round = 0; round < rounds; ++round)
                results[thread * rounds + round] = all_results(thread + round);
        });
    for (std::thread &thread : running)
        thread.join();
    const std::vector<std::string> expected = all_results(0);
    for (const std::vector<std::string> &result : results)
        ASSERT_EQ(result, expected);
}

} // namespace
