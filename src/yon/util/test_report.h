// What a run of test cases tells: lines on the console, and a JUnit report.
#pragma once

#include <cstdio>
#include <memory>
#include <vector>

#include "yon/util/test.h"

namespace yon::test {

/// What became of a case.
struct Result {
    Case const * which = nullptr;
    std::vector<String> failures;  ///< "file:line: expression" and the values on a second line
    Time duration;
};

/// A JUnit file that is complete at every moment: a case that has begun stands in it as one that did not end, until
/// its result takes that place. One thread at a time.
class JUnitReport {
public:
    /// No file for an empty name. Raises `InvalidDataException` for one that cannot be made.
    explicit JUnitReport(String const & filename);

    void begins(Case const & c);
    void ended(Result const & result);

private:
    void put(String const & entry, bool goesOn);

    struct Close {
        void operator()(std::FILE * f) const noexcept { std::fclose(f); }
    };
    std::unique_ptr<std::FILE, Close> file_;
    long entry_ = 0;        ///< where the entry of the running case begins
    std::size_t tail_ = 0;  ///< bytes behind that
};

/// The report of a run: each case is told before it begins.
class Report {
public:
    explicit Report(String const & junit) : junit_(junit) {}

    void begins(Case const & c);
    void ended(Result const & result);
    /// The totals and the names of what failed.
    void summary() const;
    unsigned failed() const noexcept { return static_cast<unsigned>(failed_.size()); }

private:
    JUnitReport junit_;
    std::vector<String> failed_;
    unsigned passed_ = 0;
};

}  // namespace yon::test
