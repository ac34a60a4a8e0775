// Eight threads in all families of functions for a long time, and the memory of the process.
//
// A case is made from its number alone: names, and pieces of the corpora, broken by pieces of each other. In
// a round eight threads work off the next cases at once, in one round side by side and in the next one each
// from a place of its own, and each result has to be the one that a single thread then gets. So charsets are
// opened and tables built while others read. Of a result its hash is kept, and memory that grows is the
// library's.
//
// Names are out of a fixed stock, as the library keeps what it learns of each pair of them, and a converter
// for each thread that was inside at the same time.
//
// usage: soak MINUTES DIRECTORY...

#include "fuzz.h"
#include "zel.hpp"

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <thread>
#include <vector>

#include <unistd.h>

namespace {

constexpr const char *hostile_names[] = {
    // spellings of names that are known
    "ISO_8859-15", "i-s-o 8859_15", "iso-8859-15,1''x", "IMAP-mailbox-name", "ISO-2022-CN", "UTF-16",
    "ja_JP@x=y", "de@collation=phonebook", "en_US_POSIX",
    // names that nobody knows
    "", " ", "UTF8\xFF", "%n%n%s%s", "../../../etc/passwd", "\r\nBcc: a@b", "xx_YY_ZZZZ",
    "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa"};

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

struct given {
    const char *language, *from, *to; // two charsets
    std::string text, other;
    std::size_t number;
};

class drawer {
public:
    drawer(const corpus &files, std::size_t number) : files_(files), random_(number) {}

    std::size_t below(std::size_t end) { return random_() % end; }
    template <class List>
    const auto &one_of(const List &list) {
        return list[below(std::size(list))];
    }
    std::string text() {
        std::string text = piece(below(8) ? 200 : 20'000);
        for (std::size_t count = below(4); count > 0; --count) {
            const std::size_t at = below(text.size() + 1), taken_out = below(16);
            text.replace(at, taken_out, below(2) ? piece(16) : std::string(1, static_cast<char>(below(256))));
        }
        return text;
    }

private:
    std::string piece(std::size_t longest) {
        const std::string &file = one_of(files_);
        const std::size_t from = below(file.size() + 1);
        return file.substr(from, 1 + below(longest));
    }

    const corpus &files_;
    std::mt19937_64 random_;
};

// One of the charsets is UTF-8, so that there are no more pairs than memory settles with in a minute.
given draw(drawer source) {
    const char *names[] = {source.one_of(languages), source.one_of(charsets), "UTF-8"};
    if (source.below(2))
        std::swap(names[1], names[2]);
    if (source.below(16) == 0) {
        std::fill(std::begin(names), std::end(names), "UTF-8");
        names[source.below(std::size(names))] = source.one_of(hostile_names);
    }
    return {names[0], names[1], names[2], source.text(), source.text(), source.below(INT32_MAX)};
}

std::string buffers(const given &of) {
    return zel::detail::converted(of.text, of.from, of.to) + (zel::can_convert(of.from, of.to) ? "+" : "-");
}

std::string strings(const given &of) {
    const char *const text = of.text.c_str();
    char *results[] = {nullptr};
    ZEL_ConvertBufferArray(of.from, of.to, &text, 1, results);
    return taken(results[0]) + taken(ZEL_LocalToUTF8(text, of.from)) + taken(ZEL_UTF8ToLocal(text, of.to)) +
           zel::encode_mailbox(text) + zel::decode_mailbox(text) + zel::escape_unicode(text, of.number % 2);
}

std::string direct_converters(const given &of) {
    std::string results;
    for (const auto convert :
         {eucjp2jis, jis2eucjp, sjis2jis, jis2sjis, iso2022kr2euckr, hz2gb, big2gb, gb2big5})
        results += zel::convert_directly(convert, of.text);
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
    const given of = draw({files, number});
    try {
        return std::hash<std::string>()(families[number % std::size(families)](of));
    } catch (const zel::error &told) {
        return std::hash<std::string>()(told.what());
    }
}

constexpr std::size_t threads = 8, cases = 1000; // of a round

using results = std::vector<std::size_t>;

// All begin with the same case in one round, each with another one in the next.
results results_of_round(std::size_t first_case, std::size_t thread, const corpus &files) {
    results of(cases);
    for (std::size_t i = 0; i < cases; ++i) {
        const std::size_t at = (i + thread * cases / threads * (first_case / cases % 2)) % cases;
        of[at] = result_of(first_case + at, files);
    }
    return of;
}

bool round_is_good(std::size_t first_case, const corpus &files) {
    std::atomic<std::size_t> ready = 0;
    std::vector<results> of_threads(threads);
    std::vector<std::thread> running;
    for (std::size_t thread = 0; thread < threads; ++thread)
        running.emplace_back([&, thread] {
            for (++ready; ready < threads;)
                std::this_thread::yield();
            of_threads[thread] = results_of_round(first_case, thread, files);
        });
    for (std::thread &thread : running)
        thread.join();
    const results expected = results_of_round(first_case, 0, files);
    bool good = true;
    for (std::size_t at = 0; at < cases; ++at)
        for (const results &of : of_threads)
            if (of[at] != expected[at]) {
                std::printf("case %zu: eight threads get what one does not\n", first_case + at);
                good = false;
            }
    return good;
}

double resident_megabytes() {
    long size = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> size >> resident;
    return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1048576;
}

// MB that may come behind the first minute: the pairs of charsets keep about 1 KB for each further thread
// that was inside at the same time.
constexpr double slack = 1.5;

bool stays_good(const corpus &files, double minutes) {
    using namespace std::chrono;
    const auto start = steady_clock::now();
    double passed = 0, told = 0, settled = 0, most = 0;
    bool good = true;
    for (std::size_t first_case = 0; good && passed < minutes; first_case += cases) {
        good = round_is_good(first_case, files);
        passed = duration<double, std::ratio<60>>(steady_clock::now() - start).count();
        most = std::max(most, resident_megabytes());
        if (passed <= 1 || first_case == 0)
            settled = most;
        if (passed < told)
            continue;
        std::printf("minute %2.0f: %zu cases, %.2f MB\n", told++, first_case + cases, most);
        std::fflush(stdout);
    }
    std::printf("memory: %.2f MB in the first minute, %.2f MB at most\n", settled, most);
    return good && most <= settled + slack;
}

} // namespace

int main(int argc, char **argv) {
    if (argc < 3 || std::atof(argv[1]) <= 0) {
        std::fputs("usage: soak MINUTES DIRECTORY...\n", stderr);
        return 2;
    }
    const zel::library library;
    const bool good = stays_good(read_files({argv + 2, argv + argc}), std::atof(argv[1]));
    std::puts(good ? "passed" : "failed");
    return good ? 0 : 1;
}
