// The rows of the benchmark: what is timed, on which texts, beside whom, and how fast it is meant to be.
//
// Invariant: a row's texts exist only while it runs.

#pragma once

#include "neighbours.h"
#include "texts.h"

namespace bench {

// The library stands first among the subjects; without neighbours a row is a limit, for information.
struct trial {
    using reading = std::function<std::string(std::string)>;

    text_pool texts;
    std::vector<subject> subjects;
    reading meaning; // of a result, the same for all subjects; if empty the bytes are
};

struct row {
    std::string name;
    double goal; // time of the library, as a share of the best neighbour's
    std::function<trial()> prepare;
};

std::vector<row> all_rows();

} // namespace bench
