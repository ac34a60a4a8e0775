#include "report.h"

#include <algorithm>
#include <cstdio>

#include <unistd.h>

namespace tool {
namespace {

bool reported = false;

} // namespace

void report(std::string_view file, std::string_view reason) {
    reported = true;
    std::string line = "zel: " + std::string(file) + ": " + std::string(reason);
    const auto is_control = [](unsigned char byte) {
        return byte < 0x20 || byte == 0x7F;
    }; // names from the wire
    std::replace_if(line.begin(), line.end(), is_control, '?');
    const char *over_the_bar = isatty(STDERR_FILENO) ? "\r\x1B[K" : "";
    std::fprintf(stderr, "%s%s\n", over_the_bar, line.c_str());
}

int exit_code() {
    return reported ? 1 : 0;
}

} // namespace tool
