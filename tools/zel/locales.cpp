#include "locales.h"

#include "files.h"
#include "report.h"
#include "texts.h"

#include <zel.hpp>

#include <algorithm>
#include <cstdio>

namespace tool {
namespace {

// Those that some language admits, beside UTF-8 and UTF-7, which all of them do.
constexpr const char *charsets[] = {
    "us-ascii",   "iso-8859-1", "iso-8859-15",  "iso-8859-2", "iso-8859-4",  "iso-8859-5", "iso-8859-6",
    "iso-8859-7", "iso-8859-8", "iso-8859-9",   "tis-620",    "iso-2022-jp", "euc-kr",     "ks_c_5601-1987",
    "gb2312",     "big5",       "windows-1252", "utf-8",      "utf-7"};

struct sorted_line {
    std::string line, key;
};

// What a header says: as the language of the locale admits it or, without one, in any charset.
std::string decoded(const std::string &header, const std::string &locale, const std::string &charset) {
    if (!locale.empty())
        return zel::decode_header(locale, header, charset);
    return same_name(charset, "UTF-8") ? zel::read_header(header) : zel::read_header(header, charset);
}

std::string sort_key(const given_text &given, const std::string &locale, const std::string &charset,
                     bool headers) {
    std::string key = headers ? decoded(given.text, locale, charset) : given.text;
    if (const std::size_t nul = key.find('\0'); nul != key.npos) {
        report(given.place, "sorted by what stands before its NUL");
        key.resize(nul);
    }
    return key;
}

} // namespace

void write_dates(const std::string &locale, const std::string &zone, const std::string &to_charset,
                 const std::vector<std::int32_t> &times) {
    line_output output(to_charset);
    for (const std::int32_t time : times)
        attempt(std::to_string(time),
                [&] { output.put(std::to_string(time), zel::date(locale, zone, time)); });
}

void sort_lines(const std::string &locale, const std::string &charset, bool headers) {
    const bool any_charset = headers && locale.empty();
    std::vector<sorted_line> lines;
    const auto take = [&](const given_text &given) {
        lines.push_back({given.text, sort_key(given, locale, charset, headers)});
    };
    (headers ? each_header : each_text)({}, take);
    const std::string of_keys = any_charset ? "UTF-8" : charset;
    std::stable_sort(lines.begin(), lines.end(), [&](const sorted_line &one, const sorted_line &other) {
        return zel::compare(locale, one.key, other.key, of_keys) < 0;
    });
    for (sorted_line &each : lines) {
        each.line.erase(std::remove(each.line.begin(), each.line.end(), '\r'), each.line.end()); // of folds
        write_out(each.line + '\n');
    }
}

void list_languages() {
    for (const std::string &language : zel::languages()) {
        std::string admitted;
        for (const char *charset : charsets)
            admitted += zel::admits(language, charset) ? std::string(" ") + charset : "";
        char columns[80];
        std::snprintf(columns, sizeof columns, "%-6s %-12s %-12s %-17s", language.c_str(),
                      zel::mail_charset(language).c_str(), zel::web_charset(language).c_str(),
                      zel::transfer_encoding(language, "é").c_str());
        write_out(columns + admitted + '\n');
    }
}

// A NUL ends a text for the library, so what stands between is repaired apart.
void repair(const std::string &charset) {
    attempt("-", [&] {
        const std::string bytes = read_all("-");
        std::string_view rest = bytes;
        for (std::size_t end = 0; (end = rest.find('\0')) != rest.npos; rest.remove_prefix(end + 1))
            write_out(zel::repaired(charset, rest.substr(0, end)) + '\0');
        write_out(zel::repaired(charset, rest));
    });
}

} // namespace tool
