// main() of every benchmark: prints the usual table and then, for each job, the library's time in relation to each
// peer's. A benchmark is named "job/contestant", where the job may have several parts and the library's contestant is
// "zuvyon": BENCHMARK(parseOurs)->Name("parse/40000 nodes/zuvyon"). Arguments belong to the job.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr char const * us = "zuvyon";

/// Remembers the best time of each contestant for each job, in the order in which the jobs came. The best of several
/// repetitions is the one that other programs disturbed least. Processor time counts, unless the benchmark asks for
/// real time.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    RatioReporter() : ConsoleReporter(OO_Tabular) {}

    void ReportRuns(std::vector<Run> const & runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (Run const & run : runs) {
            if (run.run_type == Run::RT_Iteration && !run.error_occurred) add(run);
        }
    }

    void Finalize() override {
        ConsoleReporter::Finalize();
        std::printf("\nTime of %s in relation to its peers (below 1: faster)\n", us);
        for (std::string const & job : jobs_) print(job);
    }

private:
    using Times = std::vector<std::pair<std::string, double>>;

    void add(Run const & run) {
        std::string const & name = run.run_name.function_name;
        auto const slash = name.rfind('/');
        if (slash == std::string::npos) return;
        std::string job = name.substr(0, slash);
        if (!run.run_name.args.empty()) job += "/" + run.run_name.args;
        if (!times_.contains(job)) jobs_.push_back(job);
        Times & times = times_[job];
        std::string const contestant = name.substr(slash + 1);
        auto const known = std::find_if(times.begin(), times.end(), [&](auto & t) { return t.first == contestant; });
        bool const wall = run.run_name.time_type == "real_time";
        double const time = wall ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime();
        if (known == times.end()) {
            times.emplace_back(contestant, time);
        } else {
            known->second = std::min(known->second, time);
        }
    }

    void print(std::string const & job) const {
        Times const & times = times_.at(job);
        auto const ours = std::find_if(times.begin(), times.end(), [](auto & t) { return t.first == us; });
        if (ours == times.end()) return;
        std::printf("%-40s", job.c_str());
        for (auto const & [contestant, time] : times) {
            if (contestant != us) std::printf("  %s %.2f", contestant.c_str(), ours->second / time);
        }
        std::printf("\n");
    }

    std::vector<std::string> jobs_;
    std::map<std::string, Times> times_;
};

}  // namespace

int main(int argc, char ** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
}
