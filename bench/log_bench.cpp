// Records in files, beside spdlog and glog: cached ones, ones that are in the file when the call returns, and ones
// that nobody wants. Each record has date and time to the millisecond, process, thread, logger, category, function
// (glog: file and line), and a message with two numbers. Real time counts, for threads wait for each other.
#include <benchmark/benchmark.h>
#include <glog/logging.h>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>

#include <filesystem>
#include <memory>
#include <string>

#include "yon/log/logger_factory.h"
#include "yon/log/macros.h"

namespace {

std::string fileFor(char const * who) {
    return (std::filesystem::temp_directory_path() / (std::string("log_bench_") + who)).string();
}

// --- ours ---

yon::logger & ours() {
    static yon::logger & log = []() -> yon::logger & {
        yon::logger & made = yon::logger_factory::instance("bench");
        made.filename(fileFor("zuvyon"));
        made.debugOn(true).useDebugLogfile(false);
        return made;
    }();
    return log;
}

template <bool flush>
void recordOurs(benchmark::State & state) {
    yon::logger & log = ours();
    int n = 0;
    for (auto _ : state) {
        ++n;
        YON_LOG_DEBUG(log, "BENCH", "request " << n << " took " << 2 * n << " us");
        if constexpr (flush) log.flush();
    }
    state.SetItemsProcessed(state.iterations());
}

void unwantedOurs(benchmark::State & state) {
    yon::logger & log = yon::logger_factory::instance("quiet");
    int n = 0;
    for (auto _ : state) {
        YON_LOG_DEBUG(log, "BENCH", "request " << n << " took " << 2 * n << " us");
        benchmark::DoNotOptimize(n);
    }
}

// --- spdlog ---

template <class Sink>
std::shared_ptr<spdlog::logger> makeSpdlog(char const * file, bool flush) {
    auto log = std::make_shared<spdlog::logger>("bench", std::make_shared<Sink>(fileFor(file), true));
    log->set_pattern("%Y-%m-%d %H:%M:%S.%e<%P.%t>[%n][%l][%!] %v");
    log->set_level(spdlog::level::info);
    if (flush) log->flush_on(spdlog::level::trace);
    return log;
}

template <class Sink, bool flush>
void recordSpdlog(benchmark::State & state) {
    static auto const log = makeSpdlog<Sink>(flush ? "spdlog_flushed" : "spdlog", flush);
    int n = 0;
    for (auto _ : state) {
        ++n;
        SPDLOG_LOGGER_INFO(log, "request {} took {} us", n, 2 * n);
    }
    state.SetItemsProcessed(state.iterations());
}
using Single = spdlog::sinks::basic_file_sink_st;
using Multi = spdlog::sinks::basic_file_sink_mt;

void unwantedSpdlog(benchmark::State & state) {
    static auto const log = makeSpdlog<Multi>("spdlog", false);
    int n = 0;
    for (auto _ : state) {
        log->debug("request {} took {} us", n, 2 * n);
        benchmark::DoNotOptimize(n);
    }
}

// --- glog ---

void startGlog() {
    static bool const started = [] {
        FLAGS_log_dir = std::filesystem::temp_directory_path().string();
        FLAGS_stderrthreshold = google::FATAL;
        google::InitGoogleLogging("log_bench_glog");
        return true;
    }();
    static_cast<void>(started);
}

template <bool flush>
void recordGlog(benchmark::State & state) {
    startGlog();
    if (state.thread_index() == 0) FLAGS_logbuflevel = flush ? -1 : google::ERROR;
    int n = 0;
    for (auto _ : state) {
        ++n;
        LOG(INFO) << "request " << n << " took " << 2 * n << " us";
    }
    state.SetItemsProcessed(state.iterations());
}

void unwantedGlog(benchmark::State & state) {
    int n = 0;
    for (auto _ : state) {
        VLOG(1) << "request " << n << " took " << 2 * n << " us";
        benchmark::DoNotOptimize(n);
    }
}

// --- all of them ---

void registerRecords(bool flush, int threads) {
    std::string const job = std::string(flush ? "flushed" : "cached") + " record/" + std::to_string(threads) +
                            (threads == 1 ? " thread/" : " threads/");
    auto const add = [&](char const * who, void (*run)(benchmark::State &)) {
        benchmark::RegisterBenchmark((job + who).c_str(), run)->Threads(threads)->UseRealTime();
    };
    add("zuvyon", flush ? recordOurs<true> : recordOurs<false>);
    if (threads == 1) add("spdlog_st", flush ? recordSpdlog<Single, true> : recordSpdlog<Single, false>);
    add("spdlog_mt", flush ? recordSpdlog<Multi, true> : recordSpdlog<Multi, false>);
    add("glog", flush ? recordGlog<true> : recordGlog<false>);
}

bool const registered = [] {
    for (bool const flush : {false, true}) {
        for (int const threads : {1, 2, 4}) registerRecords(flush, threads);
    }
    benchmark::RegisterBenchmark("unwanted record/zuvyon", unwantedOurs);
    benchmark::RegisterBenchmark("unwanted record/spdlog", unwantedSpdlog);
    benchmark::RegisterBenchmark("unwanted record/glog", unwantedGlog);
    return true;
}();

}  // namespace
