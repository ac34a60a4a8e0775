// Times the library beside its neighbours and prints one table: the times for one text, the ratio of the
// library to its best neighbour, and the goal.
//
// Invariant: a row is timed only when its subjects have given the same on each of its texts, which has also
// warmed them up. Then they take turns by chance, so that what else the machine does meets them all.

#include "rows.h"

#include <zel.h>

#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <regex>
#include <stdexcept>

namespace bench {
namespace {

std::size_t longest(const text_pool &texts) {
    return std::ranges::max(texts, {}, &std::string::size).size();
}

void check(const row &of, trial &with) {
    scratch to(longest(with.texts));
    const auto meant_by = [&](const subject &who, std::string &text) {
        const std::string given = text_of(who.run(text, to));
        return with.meaning ? with.meaning(given) : given;
    };
    for (std::string &text : with.texts) {
        const std::string own = meant_by(with.subjects.front(), text);
        for (const subject &who : with.subjects)
            if (const std::string other = meant_by(who, text); other != own)
                throw std::runtime_error(of.name + ": of\n" + text + "\nthe library makes\n" + own +
                                         "\nand " + who.name + "\n" + other);
    }
}

// Nanoseconds a round through all texts, by subject. Threads are timed by the clock, which also sees them
// wait; one alone by what it runs, as the processor may be shared.
class medians : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context &) override { return true; }

    void ReportRuns(const std::vector<Run> &runs) override {
        for (const Run &run : runs)
            if (run.aggregate_name == "median")
                times[run.run_name.function_name] =
                    run.run_name.time_type.empty()
                        ? run.GetAdjustedCPUTime()
                        : run.GetAdjustedRealTime() * static_cast<double>(run.threads);
    }

    std::map<std::string, double> times;
};

std::map<std::string, double> measure(trial &with) {
    const std::size_t room = longest(with.texts);
    const bool by_clock = with.subjects.front().threads > 1;
    for (const subject &who : with.subjects) {
        const auto rounds = [&](benchmark::State &state) {
            scratch to(room);
            for ([[maybe_unused]] auto _ : state)
                for (std::string &text : with.texts)
                    benchmark::DoNotOptimize(who.run(text, to));
        };
        auto *registered = benchmark::RegisterBenchmark(who.name.c_str(), rounds)->Threads(who.threads);
        if (by_clock)
            registered->UseRealTime();
    }
    medians reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::ClearRegisteredBenchmarks();
    for (auto &[name, time] : reporter.times)
        time /= static_cast<double>(with.texts.size());
    return reporter.times;
}

constexpr const char *columns = "%-44s %11s %11s  %-18s %6s %5s\n";

// Gives whether the goal is met.
bool print(const row &of, const trial &with, const std::map<std::string, double> &times) {
    const double own = times.at(with.subjects.front().name);
    if (with.subjects.size() == 1) {
        std::printf("%-44s %11.1f\n", of.name.c_str(), own);
        return true;
    }
    const auto time_of = [&](const subject &who) { return times.at(who.name); };
    const subject &best = *std::min_element(
        with.subjects.begin() + 1, with.subjects.end(),
        [&](const subject &one, const subject &other) { return time_of(one) < time_of(other); });
    const double ratio = own / time_of(best);
    std::printf("%-44s %11.1f %11.1f  %-18s %6.3f %5.2f%s\n", of.name.c_str(), own, time_of(best),
                best.name.c_str(), ratio, of.goal, ratio <= of.goal ? "" : "  missed");
    return ratio <= of.goal;
}

void run(const std::vector<row> &rows, const std::regex &filter) {
    std::printf(columns, "nanoseconds a text", "libzel", "best", "best neighbour", "ratio", "goal");
    int timed = 0;
    int missed = 0;
    for (const row &next : rows) {
        if (!std::regex_search(next.name, filter))
            continue;
        trial with = next.prepare();
        check(next, with);
        missed += print(next, with, measure(with)) ? 0 : 1;
        timed += 1;
        std::fflush(stdout);
    }
    std::printf("%d rows, %d miss their goal\n", timed, missed);
}

} // namespace
} // namespace bench

// The arguments are options of Google Benchmark, and one regular expression that selects rows.
int main(int argc, char **argv) {
    std::string defaults[] = {"--benchmark_enable_random_interleaving=true", "--benchmark_repetitions=11",
                              "--benchmark_min_time=0.015"};
    std::vector<char *> arguments = {argv[0]};
    for (std::string &option : defaults)
        arguments.push_back(option.data());
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    setpriority(PRIO_PROCESS, 0, -5); // where it is allowed
    const ZELConfig config = {.bundles_path = "."};
    ZEL_Initialize(nullptr, &config);
    bench::start_neighbours();
    try {
        const std::regex filter(count > 1 ? arguments[1] : "", std::regex::icase);
        bench::run(bench::all_rows(), filter);
    } catch (const std::exception &failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
