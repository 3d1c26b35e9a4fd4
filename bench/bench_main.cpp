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
    RatioReporter() : ConsoleReporter(OO_None) {}

    /// Of repeated runs the table shows the median alone.
    void ReportRuns(std::vector<Run> const & runs) override {
        std::vector<Run> shown;
        for (Run const & run : runs) {
            if (run.run_type == Run::RT_Iteration && !run.error_occurred) add(run);
            bool const median = run.run_type == Run::RT_Aggregate && run.aggregate_name == "median";
            if (median || run.repetitions <= 1 || run.error_occurred) shown.push_back(run);
        }
        if (!shown.empty()) ConsoleReporter::ReportRuns(shown);
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
    // Contestants take turns, so that what else the machine does meets them alike. Given options come later and win.
    std::vector<char *> arguments(argv, argv + argc);
    char defaults[][64] = {"--benchmark_repetitions=5", "--benchmark_enable_random_interleaving=true",
                           "--benchmark_min_time=0.1"};
    for (char * option : defaults) arguments.insert(arguments.begin() + 1, option);
    argc = static_cast<int>(arguments.size());
    argv = arguments.data();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
}
