// What a run of the benchmark has found: as a table to read, and as a file to draw.

#pragma once

#include <string>
#include <vector>

namespace bench {

struct result_of_row {
    std::string name;
    double goal;
    std::size_t bytes;     // of a text, on average
    double own;            // nanoseconds that a text takes
    double best = 0;       // of the best neighbour
    std::string neighbour; // the best; empty where there is none
};

struct result_of_group {
    std::string name;
    double goal; // of the mean; 0: none
    std::vector<result_of_row> rows = {};
};

bool is_met(const result_of_row &of);

void print_head();
void print_row(const result_of_row &of);
void print_groups(const std::vector<result_of_group> &groups);

// Two blocks, of rows and of groups, with tabs between the columns, as bench/ratios.gp and bench/sizes.gp
// read them.
void write_results(const std::vector<result_of_group> &groups, const std::string &path);

} // namespace bench
