#include "report.h"

#include <cstdio>

namespace tool {
namespace {

bool reported = false;

} // namespace

void report(std::string_view file, std::string_view reason) {
    reported = true;
    const std::string line = "zel: " + std::string(file) + ": " + std::string(reason) + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
}

int exit_code() {
    return reported ? 1 : 0;
}

} // namespace tool
