// Eight threads in all families of functions for a long time, and the memory of the process.
//
// A case is made from its number alone: a family, texts and names. The texts are pieces of files, broken by
// some mutations, the names are mostly good ones. A round takes the next cases: one thread works them off
// alone, then eight do so at once, all from the first on in one round and each from a place of its own in the
// next, and each result has to be the one of the single thread. Of a result its hash is kept, so memory that
// grows is the library's.
//
// Names are out of a fixed stock, as the library keeps what it learns of each pair of them, and a converter
// for each thread that was inside at the same time.
//
// usage: soak MINUTES DIRECTORY...

#include "rendezvous.h"

#include <zel.hpp>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include <unistd.h>

namespace {

// splitmix64: good numbers from any seed at once.
class numbers {
public:
    explicit numbers(std::uint64_t seed) : state_(seed) {}
    std::size_t below(std::size_t end) {
        std::uint64_t mixed = state_ += 0x9E3779B97F4A7C15;
        mixed = (mixed ^ mixed >> 30) * 0xBF58476D1CE4E5B9;
        mixed = (mixed ^ mixed >> 27) * 0x94D049BB133111EB;
        return static_cast<std::size_t>((mixed ^ mixed >> 31) % end);
    }

private:
    std::uint64_t state_;
};

struct locale_row {
    const char *language, *charset;
};

constexpr locale_row rows[] = {
    {"en", "us-ascii"},     {"en-US", "windows-1252"}, {"de", "iso-8859-15"}, {"fr", "iso-8859-1"},
    {"pl", "iso-8859-2"},   {"lv", "iso-8859-4"},      {"ru", "koi8-r"},      {"ru", "iso-8859-5"},
    {"el", "iso-8859-7"},   {"tr", "iso-8859-9"},      {"he", "iso-8859-8"},  {"ar", "iso-8859-6"},
    {"th", "tis-620"},      {"yi", "utf-7"},           {"ja", "Shift_JIS"},   {"ja", "euc-jp"},
    {"ja", "iso-2022-jp"},  {"ko", "euc-kr"},          {"ko", "iso-2022-kr"}, {"zh", "gb18030"},
    {"zh-CN", "gb2312"},    {"zh-CN", "hz-gb-2312"},   {"zh-TW", "big5"},     {"zh_TW", "big5"},
    {"i-default", "UTF-16"}};

constexpr const char *hostile_names[] = {"",
                                         " ",
                                         "x",
                                         "ISO_8859-15",
                                         "i-s-o 8859_15",
                                         "iso-8859-15,1''x",
                                         "utf-8,",
                                         "UTF8\xFF",
                                         "%n%n%s%s",
                                         "../../../etc/passwd",
                                         "\r\nBcc: a@b",
                                         "ja-",
                                         "ja_JP@x=y",
                                         "zh-CN-",
                                         "=?utf-8?",
                                         "ISO-2022-CN",
                                         "IMAP-mailbox-name",
                                         "euc-jp\t",
                                         "xx_YY_ZZZZ",
                                         "de@collation=phonebook",
                                         "root",
                                         "en_US_POSIX",
                                         "ibm-37",
                                         "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa"};

constexpr std::string_view hostile_pieces[] = {"=?",
                                               "?=",
                                               "?B?",
                                               "=?utf-8?B?",
                                               "=?ISO-2022-JP*ja?Q?",
                                               "\r\n ",
                                               "\x1B(B",
                                               "\x1B$B",
                                               "\x0E",
                                               "\x0F",
                                               "~{",
                                               "~}",
                                               "utf-8'x'",
                                               "%A4",
                                               "=A4",
                                               "=\r\n",
                                               "\xA4@",
                                               "\x8E",
                                               "\x8F",
                                               "\xF0\x9F",
                                               "\xC0",
                                               "\xED\xA0\x80",
                                               "&AOk-",
                                               "\\u00e9",
                                               "日本",
                                               "é",
                                               "'",
                                               "\"",
                                               "\x81"};

using corpus = std::vector<std::string>;

corpus read_files(const std::vector<std::string> &directories) {
    corpus files;
    for (const std::string &directory : directories)
        for (const auto &entry : std::filesystem::recursive_directory_iterator(directory)) {
            std::ifstream file(entry.path(), std::ios::binary);
            if (entry.is_regular_file())
                files.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
        }
    std::sort(files.begin(), files.end());
    return files;
}

void mutate(std::string &text, numbers &random) {
    const std::size_t at = random.below(text.size() + 1), from = random.below(text.size() + 1);
    switch (random.below(5)) {
    case 0:
        text.insert(at, hostile_pieces[random.below(std::size(hostile_pieces))]);
        break;
    case 1:
        text.insert(at, 1, static_cast<char>(random.below(256)));
        break;
    case 2:
        text.erase(at, random.below(16));
        break;
    case 3:
        text.insert(at, text.substr(from, random.below(64)));
        break;
    default:
        std::reverse(text.begin() + static_cast<std::ptrdiff_t>(at), text.end());
    }
}

std::string draw_text(const corpus &files, numbers &random) {
    const std::string &file = files[random.below(files.size())];
    const std::size_t from = random.below(file.size() + 1), longest = random.below(8) ? 200 : 20'000;
    std::string text = file.substr(from, 1 + random.below(longest));
    for (std::size_t count = random.below(4); count > 0; --count)
        mutate(text, random);
    return text;
}

struct given {
    const char *language, *from, *to; // two charsets
    std::string text, other;
    std::size_t number;
};

// One of the charsets is UTF-8, so that there are no more pairs than memory settles with in a minute.
given draw(const corpus &files, numbers random) {
    const locale_row row = rows[random.below(std::size(rows))];
    const char *names[] = {row.language, row.charset, "UTF-8"};
    if (random.below(2))
        std::swap(names[1], names[2]);
    if (random.below(16) == 0) {
        std::fill(std::begin(names), std::end(names), "UTF-8");
        names[random.below(std::size(names))] = hostile_names[random.below(std::size(hostile_names))];
    }
    std::string text = draw_text(files, random), other = draw_text(files, random);
    return {names[0], names[1], names[2], std::move(text), std::move(other), random.below(INT32_MAX)};
}

std::string buffers(const given &of) {
    return zel::detail::converted(of.text, of.from, of.to) + (zel::can_convert(of.from, of.to) ? "+" : "-");
}

std::string strings(const given &of) {
    const char *const text = of.text.c_str();
    const char *const list[] = {text};
    char *results[] = {nullptr};
    ZEL_ConvertBufferArray(of.from, of.to, list, 1, results);
    return zel::detail::taken(results[0]) + zel::detail::taken(ZEL_LocalToUTF8(text, of.from)) +
           zel::detail::taken(ZEL_UTF8ToLocal(text, of.to)) + zel::encode_mailbox(text) +
           zel::decode_mailbox(text) + zel::escape_unicode(text, of.number % 2);
}

std::string direct_converters(const given &of) {
    std::string results;
    for (const auto converter :
         {eucjp2jis, jis2eucjp, sjis2jis, jis2sjis, iso2022kr2euckr, hz2gb, big2gb, gb2big5})
        results += zel::convert_directly(converter, of.text);
    return results;
}

std::string headers(const given &of) {
    const std::string value = zel::encode_header(of.language, of.text, of.from);
    return value + zel::decode_header(of.language, value, of.to) +
           zel::decode_header(of.language, of.other, of.to) + zel::read_header(of.other);
}

std::string parameters(const given &of) {
    return zel::encode_parameter(of.language, "filename", of.text, of.from) +
           zel::decode_parameter(of.from + ("'" + of.other), of.to);
}

std::string bodies(const given &of) {
    return zel::decode_body(of.language, of.from, of.other, of.to) + zel::encode_base64(of.text) +
           zel::encode_body(of.language, of.text, of.from, of.number % 2);
}

std::string vcards(const given &of) {
    return zel::encode_vcard(of.language, of.text, of.from);
}

std::string policies(const given &of) {
    std::string answers = zel::web_charset(of.language) + zel::mail_charset(of.language, of.text) +
                          zel::transfer_encoding(of.language, of.text) + zel::normalized_locale(of.language);
    for (const std::string &tag : zel::accepted_languages(of.text))
        answers += tag;
    return answers + (zel::admits(of.language, of.from) ? "+" : "-") +
           std::to_string(ZEL_GetIntLanguageID(of.language));
}

std::string locales(const given &of) {
    constexpr const char *zones[] = {"",     "Europe/Berlin", "Asia/Tokyo", "America/St_Johns",
                                     "\xFF", "GMT+25:00"};
    return std::to_string(zel::compare(of.language, of.text, of.other, of.from)) +
           std::to_string(zel::compare_headers(of.language, of.text, of.other, of.from)) +
           zel::repaired(of.from, of.text) +
           zel::date(of.language, zones[of.number % std::size(zones)], 1 + std::time_t(of.number), of.to);
}

constexpr std::string (*families[])(const given &) = {
    buffers, strings, direct_converters, headers, parameters, bodies, vcards, policies, locales};

std::size_t result_of(std::size_t number, const corpus &files) {
    const given of = draw(files, numbers(number));
    try {
        return std::hash<std::string>()(families[number % std::size(families)](of));
    } catch (const zel::error &told) {
        return std::hash<std::string>()(told.what());
    }
}

constexpr unsigned threads = 8;
constexpr std::size_t cases = 4000; // of a round

struct run {
    const corpus files;
    std::size_t first_case = 0;
    std::vector<std::size_t> expected = std::vector<std::size_t>(cases);
    std::atomic<bool> ends = false, differs = false;
    rendezvous begin_of_round{threads + 1}, end_of_round{threads + 1};
};

void work(run &of, std::size_t thread) {
    for (;;) {
        of.begin_of_round.arrive_and_wait();
        if (of.ends)
            return;
        for (std::size_t i = 0; i < cases; ++i) {
            const std::size_t at = (i + thread * cases / threads * (of.first_case / cases % 2)) % cases;
            if (result_of(of.first_case + at, of.files) == of.expected[at])
                continue;
            std::printf("case %zu: eight threads get what one does not\n", of.first_case + at);
            of.differs = true;
        }
        of.end_of_round.arrive_and_wait();
    }
}

void take_round(run &of) {
    for (std::size_t i = 0; i < cases; ++i)
        of.expected[i] = result_of(of.first_case + i, of.files);
    of.begin_of_round.arrive_and_wait();
    of.end_of_round.arrive_and_wait();
    of.first_case += cases;
}

double resident_megabytes() {
    long size = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> size >> resident;
    return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1048576;
}

// MB that may come behind the first minute: some 200 pairs of charsets keep about 1 KB for each further
// thread that was inside at the same time.
constexpr double slack = 1.5;

bool keep_on(run &of, double minutes) {
    using namespace std::chrono;
    const auto start = steady_clock::now();
    const auto passed = [&] { return duration<double, std::ratio<60>>(steady_clock::now() - start).count(); };
    double told = 0, settled = 0, most = 0;
    while (!of.differs && passed() < minutes) {
        take_round(of);
        const double now = resident_megabytes();
        most = std::max(most, now);
        if (passed() <= 1)
            settled = most;
        if (passed() < told)
            continue;
        std::printf("minute %2.0f: %zu cases, %.1f MB\n", told++, of.first_case, now);
        std::fflush(stdout);
    }
    std::printf("memory: %.2f MB in the first minute, %.2f MB at most\n", settled, most);
    return !of.differs && most <= settled + slack;
}

} // namespace

int main(int argc, char **argv) {
    if (argc < 3 || std::atof(argv[1]) <= 0) {
        std::fputs("usage: soak MINUTES DIRECTORY...\n", stderr);
        return 2;
    }
    const zel::library library;
    run soak = {read_files({argv + 2, argv + argc})};
    std::vector<std::thread> running;
    for (std::size_t thread = 0; thread < threads; ++thread)
        running.emplace_back([&soak, thread] { work(soak, thread); });
    const bool good = keep_on(soak, std::atof(argv[1]));
    soak.ends = true;
    soak.begin_of_round.arrive_and_wait();
    for (std::thread &thread : running)
        thread.join();
    std::puts(good ? "passed" : "failed");
    return good ? 0 : 1;
}
