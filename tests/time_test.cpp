#include "yon/base/time.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <regex>
#include <sstream>

#include "yon/base/stopwatch.h"
#include "yon/base/version.h"

namespace yon {
namespace {

using namespace std::chrono_literals;

/// In a zone without daylight saving, whose name both systems understand: five and a half hours before UTC.
TEST(DateTimeTest, ShowsLocalTimeToTheMillisecond) {
    constexpr longlong offset = (5 * 60 + 30) * 60;
    static char zone[] = "TZ=XYZ-5:30";
    ::putenv(zone);
    ::tzset();
    std::pair<longlong, char const *> const rows[] = {
        {999, "1970-01-01 05:30:00.000"},
        {1000, "1970-01-01 05:30:00.001"},
        {-1, "1970-01-01 05:29:59.999"},
        {-offset * 1000000 - 1, "1969-12-31 23:59:59.999"},
        {1253073031250000, "2009-09-16 09:20:31.250"},
        {4107522599999000, "2100-02-28 23:59:59.999"},
        {253402300800000000, "10000-01-01 05:30:00.000"},
        {-62167219200000000, "0000-01-01 05:30:00.000"},
        {-62198755200000000, "-001-01-01 05:30:00.000"},
        {Time::max().toMicroSeconds(), "294247-01-10 09:30:54.775"},
        {Time::min().toMicroSeconds(), "-290308-12-22 01:29:05.224"},
    };
    for (auto const & [microseconds, text] : rows) {
        std::ostringstream os;
        os << Time(microseconds);
        EXPECT_EQ(os.str(), text);
    }
}

TEST(TimeTest, ShowsIntervals) {
    std::pair<Time, char const *> const rows[] = {
        {Time(1999), "0:00:00.001"},
        {Time(-1999), "-0:00:00.001"},
        {Time::milliSeconds(-1500), "-0:00:01.500"},
        {Time::seconds(3599), "0:59:59.000"},
        {25h + 1min + 2s + 3ms, "25:01:02.003"},
        {Time::max(), "2562047788:00:54.775"},
        {Time::min(), "-2562047788:00:54.775"},
    };
    for (auto const & [time, text] : rows) EXPECT_EQ(time.toDuration(), text);
}

TEST(TimeTest, RoundsDownAndSaturates) {
    longlong const limits[] = {Time::min().toMicroSeconds(), Time::max().toMicroSeconds()};
    std::vector<longlong> numbers = {0, 1, -1, 999, -999, 1000, -1000, 1001, -1001, 999999, -1000001};
    for (longlong const limit : limits) {
        for (longlong const part : {1, 2, 3, 1000, 1000000, 1000001}) numbers.push_back(limit / part);
    }
    // Exact here: a `long double` holds any sum of two numbers of 63 bits that is within the limits.
    auto const clamp = [&](long double exact) {
        if (exact >= static_cast<long double>(limits[1])) return limits[1];
        if (exact <= static_cast<long double>(limits[0])) return limits[0];
        return static_cast<longlong>(exact);
    };
    for (longlong const a : numbers) {
        long double const x = static_cast<long double>(a);
        EXPECT_EQ(Time::milliSeconds(a).toMicroSeconds(), clamp(x * 1000));
        EXPECT_EQ(Time::seconds(a).toMicroSeconds(), clamp(x * 1000000));
        EXPECT_EQ(Time(a).toMilliSeconds(), static_cast<longlong>(std::floor(x / 1000)));
        EXPECT_EQ(Time(a).toSeconds(), static_cast<longlong>(std::floor(x / 1000000)));
        for (longlong const b : numbers) {
            EXPECT_EQ((Time(a) + Time(b)).toMicroSeconds(), clamp(x + static_cast<long double>(b)));
            EXPECT_EQ((Time(a) - Time(b)).toMicroSeconds(), clamp(x - static_cast<long double>(b)));
            EXPECT_EQ(Time(a) <=> Time(b), a <=> b);
        }
    }
}

TEST(TimeTest, ConvertsFromAndToTheStandardClocks) {
    using std::chrono::system_clock;
    static_assert(Time(1ms) == Time::milliSeconds(1) && Time(1500ns) == Time(1) && Time(-1ns) == Time(-1));
    static_assert(Time(std::chrono::duration<double>(0.25)) == Time::milliSeconds(250));
    static_assert(Time(std::chrono::hours(1LL << 40)) == Time::max() && Time(-1.0h * 1e300) == Time::min());
    static_assert(Time(std::chrono::microseconds::max() - 5us).toMicroSeconds() == (1ULL << 63) - 6);
    static_assert(Time::seconds(2) + 5ms > 2s && 1min == Time::seconds(60));
    std::chrono::microseconds const us = Time(-77);
    EXPECT_EQ(us.count(), -77);
    EXPECT_EQ(Time(system_clock::time_point(Time(-77))), Time(-77));
    EXPECT_EQ(system_clock::time_point(Time::max()), system_clock::time_point::max());
    EXPECT_EQ(system_clock::time_point(Time::min()), system_clock::time_point::min());
    // The two may tick at different steps.
    Time const behind = Time::now() - Time(system_clock::now());
    EXPECT_TRUE(behind > Time(-10s) && behind < Time(100ms));
}

Time waitForTick(TimeCounter const & counter) {
    Time const before = counter.elapsed();
    Time now = before;
    while (now == before) now = counter.elapsed();
    return now;
}

TEST(StopwatchTest, AddsUpItsLaps) {
    Stopwatch watch;
    TimeCounter const outside;
    TimeCounter inside;
    EXPECT_TRUE(watch.stop() == Time() && watch.lap() == Time());
    waitForTick(inside);
    watch.start();  // runs already
    inside.start();
    Time const first = watch.lap();
    Time const least = waitForTick(inside);
    EXPECT_TRUE(watch.running());
    EXPECT_GE(watch.total(), first + least);
    Time const second = watch.stop();
    EXPECT_GE(second, least);
    waitForTick(inside);
    EXPECT_EQ(watch.laps(), (std::vector<Time>{first, second}));
    EXPECT_EQ(watch.total(), first + second);
    EXPECT_LE(watch.total(), outside.elapsed());

    watch.start();
    watch.reset();
    EXPECT_TRUE(watch.laps().empty() && !watch.running() && watch.total() == Time());
}

TEST(VersionTest, NamesVersionTimesAndOptions) {
    std::ostringstream os;
    os << show_version{};
    std::string const day = "[A-Z][a-z]{2} [ 0-9][0-9] [0-9]{4}", time = "[0-9]{2}:[0-9]{2}:[0-9]{2}";
    std::regex const expected(
        "zuvyon [0-9.]+-[0-9]{2}, built " + day + "\n[^\n]+\n[^\n]*\n?\nCurrent time = [0-9]{4}-[0-9]{2}-[0-9]{2} " +
        time + "[.][0-9]{3}\nCompile time = " + day + " " + time +
        "\nCompile options:\n\tWIN32\n\tNDEBUG\n\t_YON_UNIT_TEST OFF\n\t_YON_DEBUG OFF\n\t_YON_TRACE OFF\n"
        "\t_YON_TRACE_LOG OFF\n\t_YON_MEMLEAKCHECK OFF\n\t_YON_ASSERT OFF\n\t_YON_ASSERT_ABORT OFF\n"
        "\t_YON_BREAK_ON_EXCEPTION OFF\n\t_YON_THROW_REALLY = [0-9]\n");
    EXPECT_TRUE(std::regex_match(os.str(), expected)) << os.str();
}

}  // namespace
}  // namespace yon
