// What goes by language, locale or charset alone: dates, the order of lines, the table of languages, repair.

#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tool {

void write_dates(const std::string &locale, const std::string &zone, const std::string &to_charset,
                 const std::vector<std::int32_t> &times);
void sort_lines(const std::string &locale, const std::string &charset, bool headers);
void list_languages();
void repair(const std::string &charset);

} // namespace tool
