#include "report.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>

namespace bench {
namespace {

double ratio_of(const result_of_row &of) {
    return of.neighbour.empty() ? 0 : of.own / of.best;
}

struct summary {
    int rows = 0;
    int missed = 0;
    double mean = 0;
    double geometric = 0;
    double worst = 0;
    std::string worst_row = {};
};

// Rows without neighbours do not count.
summary sum_up(const result_of_group &of) {
    summary sums;
    for (const result_of_row &row : of.rows) {
        if (row.neighbour.empty())
            continue;
        const double ratio = ratio_of(row);
        sums.rows += 1;
        sums.missed += is_met(row) ? 0 : 1;
        sums.mean += ratio;
        sums.geometric += std::log(ratio);
        if (ratio > sums.worst) {
            sums.worst = ratio;
            sums.worst_row = row.name;
        }
    }
    sums.mean /= std::max(sums.rows, 1);
    sums.geometric = std::exp(sums.geometric / std::max(sums.rows, 1));
    return sums;
}

void print_group(const std::string &name, double goal, const summary &of) {
    std::printf("%-28s %5d %6d %6.3f %6.3f ", name.c_str(), of.rows, of.missed, of.geometric, of.mean);
    if (goal > 0)
        std::printf("%5.2f%-8s", goal, of.mean <= goal ? "" : " missed");
    else
        std::printf("%13s", "");
    std::printf("%6.3f  %s\n", of.worst, of.worst_row.c_str());
}

} // namespace

bool is_met(const result_of_row &of) {
    return ratio_of(of) <= of.goal || of.neighbour.empty();
}

void print_head() {
    std::printf("%-48s %11s %11s  %-18s %6s %5s\n", "nanoseconds a text", "libzel", "best", "best neighbour",
                "ratio", "goal");
}

void print_row(const result_of_row &of) {
    std::printf("%-48s %11.1f", of.name.c_str(), of.own);
    if (!of.neighbour.empty())
        std::printf(" %11.1f  %-18s %6.3f %5.2f%s", of.best, of.neighbour.c_str(), ratio_of(of), of.goal,
                    is_met(of) ? "" : "  missed");
    std::printf("\n");
    std::fflush(stdout);
}

void print_groups(const std::vector<result_of_group> &groups) {
    std::printf("\n%-28s %5s %6s %6s %6s %5s %13s  %s\n", "ratios by group", "rows", "missed", "geom.",
                "mean", "goal", "worst", "worst row");
    result_of_group all = {"all", 0};
    for (const result_of_group &group : groups) {
        if (const summary sums = sum_up(group); sums.rows > 0)
            print_group(group.name, group.goal, sums);
        all.rows.insert(all.rows.end(), group.rows.begin(), group.rows.end());
    }
    print_group(all.name, all.goal, sum_up(all));
}

void write_results(const std::vector<result_of_group> &groups, const std::string &path) {
    std::ofstream file(path);
    int number = 0;
    file << "#group\trow\tbytes\tlibzel\tbest\tneighbour\tratio\tgoal\n";
    for (const result_of_group &group : groups) {
        number += sum_up(group).rows > 0 ? 1 : 0;
        for (const result_of_row &row : group.rows)
            if (!row.neighbour.empty())
                file << number << '\t' << row.name << '\t' << row.bytes << '\t' << row.own << '\t' << row.best
                     << '\t' << row.neighbour << '\t' << ratio_of(row) << '\t' << row.goal << '\n';
    }
    file << "\n\n#group\tname\trows\tmean\tworst\n";
    number = 0;
    for (const result_of_group &group : groups)
        if (const summary sums = sum_up(group); sums.rows > 0)
            file << ++number << '\t' << group.name << '\t' << sums.rows << '\t' << sums.mean << '\t'
                 << sums.worst << '\n';
}

} // namespace bench
