// The rows of the benchmark, in groups: what is timed, on which texts, beside whom, and how fast it is meant
// to be.
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

// Rows that are summed up in one line: the mean of their ratios, which has a goal of its own, and the worst.
struct group {
    std::string name;
    double goal = 0; // of the mean; 0: none
    bool is_brief =
        false; // many rows, that are timed for a shorter time; those within their goals are not printed
    std::vector<row> rows = {};
};

std::vector<group> all_groups();

} // namespace bench
