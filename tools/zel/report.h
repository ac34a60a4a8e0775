// What goes wrong is said on stderr as `zel: FILE: reason`, and kept in mind for the exit code; the work goes
// on.

#pragma once

#include <string>
#include <string_view>

namespace tool {

void report(std::string_view file, std::string_view reason);

// 1 once something was reported, else 0.
int exit_code();

} // namespace tool
