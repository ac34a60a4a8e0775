// Times the library beside its neighbours and prints one table: the times for one text, the ratio of the
// library to its best neighbour, and the goal.
//
// Invariant: a row is timed only when its subjects have given the same on each of its texts, which has also
// warmed them up. Then they take turns by chance, so that what else the machine does meets them all.

#include "report.h"
#include "rows.h"

#include <zel.h>

#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <map>
#include <regex>
#include <stdexcept>
#include <thread>

namespace bench {
namespace {

std::size_t longest(const text_pool &texts) {
    return std::ranges::max(texts, {}, &std::string::size).size();
}

std::string around(const std::string &text, std::size_t at) {
    return "  " + text.substr(at - std::min<std::size_t>(at, 30), 60) + "\n";
}

void check(const row &of, trial &with) {
    scratch to(longest(with.texts));
    const auto meant_by = [&](const subject &who, std::string &text) {
        const std::string given = text_of(who.run(text, to));
        return with.meaning ? with.meaning(given) : given;
    };
    for (std::string &text : with.texts) {
        const std::string own = meant_by(with.subjects.front(), text);
        for (const subject &who : with.subjects) {
            const std::string other = meant_by(who, text);
            const auto at = static_cast<std::size_t>(std::ranges::mismatch(own, other).in1 - own.begin());
            if (other != own)
                throw std::runtime_error(of.name + ": at byte " + std::to_string(at) +
                                         " the library gives\n" + around(own, at) + "and " + who.name + "\n" +
                                         around(other, at));
        }
    }
}

// Nanoseconds that a run of each subject takes. The processors may be shared: so the median of its processor
// time counts, and of threads, which are timed by the clock to see them wait, the fastest repetition: the one
// in which each had a processor.
class stopwatch : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context &) override { return true; }

    void ReportRuns(const std::vector<Run> &runs) override {
        for (const Run &run : runs) {
            double &time = times[run.run_name.function_name];
            const bool by_clock = !run.run_name.time_type.empty();
            if (!by_clock && run.aggregate_name == "median")
                time = run.GetAdjustedCPUTime();
            else if (by_clock && run.run_type == Run::RT_Iteration)
                time = std::min(time > 0 ? time : run.GetAdjustedRealTime(), run.GetAdjustedRealTime());
        }
    }

    std::map<std::string, double> times;
};

void convert_all(const subject &who, text_pool &texts, scratch &to) {
    for (std::string &text : texts)
        benchmark::DoNotOptimize(who.run(text, to));
}

// Seconds from the moment when all threads run to the end of the last.
double race(const subject &who, text_pool &texts) {
    using clock = std::chrono::steady_clock;
    std::atomic<int> awaited = who.threads;
    std::atomic<clock::time_point> start;
    std::vector<clock::time_point> ends(static_cast<std::size_t>(who.threads));
    {
        std::vector<std::jthread> threads;
        for (clock::time_point &end : ends)
            threads.emplace_back([&] {
                scratch to(longest(texts));
                start = clock::now();
                for (--awaited; awaited > 0;)
                    continue;
                convert_all(who, texts, to);
                end = clock::now();
            });
    }
    return std::chrono::duration<double>(std::ranges::max(ends) - start.load()).count();
}

// Gives the nanoseconds that a text takes.
std::map<std::string, double> measure(trial &with, bool is_brief) {
    const bool by_clock = with.subjects.front().threads > 1;
    const std::size_t room = longest(with.texts);
    for (const subject &who : with.subjects) {
        const auto alone = [&, room](benchmark::State &state) {
            scratch to(room);
            for ([[maybe_unused]] auto _ : state)
                convert_all(who, with.texts, to);
        };
        const auto together = [&](benchmark::State &state) {
            for ([[maybe_unused]] auto _ : state)
                state.SetIterationTime(race(who, with.texts));
        };
        if (by_clock)
            benchmark::RegisterBenchmark(who.name.c_str(), together)
                ->UseManualTime()
                ->MinTime(1e-4)
                ->Repetitions(100);
        else if (is_brief)
            benchmark::RegisterBenchmark(who.name.c_str(), alone)->MinTime(.003)->Repetitions(7);
        else
            benchmark::RegisterBenchmark(who.name.c_str(), alone);
    }
    stopwatch reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::ClearRegisteredBenchmarks();
    for (auto &[name, time] : reporter.times)
        time /= static_cast<double>(with.texts.size());
    return reporter.times;
}

result_of_row time_row(const row &of, bool is_brief) {
    trial with = of.prepare();
    check(of, with);
    const std::map<std::string, double> times = measure(with, is_brief);
    std::size_t bytes = 0;
    for (const std::string &text : with.texts)
        bytes += text.size();
    result_of_row timed = {of.name, of.goal, bytes / with.texts.size(), times.at(with.subjects.front().name)};
    for (std::size_t i = 1; i < with.subjects.size(); ++i)
        if (const double time = times.at(with.subjects[i].name); i == 1 || time < timed.best) {
            timed.best = time;
            timed.neighbour = with.subjects[i].name;
        }
    return timed;
}

std::vector<result_of_group> run(const std::vector<group> &groups, const std::regex &filter) {
    print_head();
    std::vector<result_of_group> results;
    for (const group &next : groups) {
        result_of_group timed = {next.name, next.goal};
        for (const row &of : next.rows)
            if (std::regex_search(of.name, filter)) {
                timed.rows.push_back(time_row(of, next.is_brief));
                if (!next.is_brief || !is_met(timed.rows.back()))
                    print_row(timed.rows.back());
            }
        results.push_back(timed);
    }
    return results;
}

} // namespace
} // namespace bench

// The arguments are the file that the results go to, a regular expression that selects rows (all without it),
// and options of Google Benchmark.
int main(int argc, char **argv) {
    std::string defaults[] = {"--benchmark_enable_random_interleaving=true", "--benchmark_repetitions=11",
                              "--benchmark_min_time=0.015"};
    std::vector<char *> arguments = {argv[0]};
    for (std::string &option : defaults)
        arguments.push_back(option.data());
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (count < 2 || count > 3 || (count > 2 && *arguments[2] == '-')) {
        benchmark::ReportUnrecognizedArguments(count, arguments.data());
        return 2;
    }
    setpriority(PRIO_PROCESS, 0, -5); // where it is allowed
    const ZELConfig config = {.bundles_path = "."};
    ZEL_Initialize(nullptr, &config);
    bench::start_neighbours();
    try {
        const std::regex filter(count > 2 ? arguments[2] : "", std::regex::icase);
        const std::vector<bench::result_of_group> results = bench::run(bench::all_groups(), filter);
        bench::print_groups(results);
        bench::write_results(results, arguments[1]);
    } catch (const std::exception &failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
