// What the library records, for tests.
#pragma once

#include <algorithm>
#include <atomic>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "yon/base/diagnostics.h"

namespace yon {

/// Takes the place of the log while it lives: keeps each record of some source files as "tag line function: text",
/// and where `traced`, each function that is entered as "> line".
class Records : public diagnostics::Sink {
public:
    explicit Records(std::string files = "") : files_(std::move(files)), before_(diagnostics::install(this)) {}
    virtual ~Records() { diagnostics::install(before_); }

    void exceptionThrown(diagnostics::Location const &, istr) noexcept override {}
    void record(diagnostics::Level, istr tag, diagnostics::Location const & at, istr text) noexcept override {
        note(std::string(tag) + ' ' + std::to_string(at.line) + ' ' + at.func + ": " + std::string(text), at);
    }
    bool categoryOn(istr) noexcept override { return debug; }
    void enter(diagnostics::Location const & at) noexcept override {
        if (traced) note("> " + std::to_string(at.line), at);
    }
    void leave(diagnostics::Location const &) noexcept override {}
    void callStack(CallStack &) noexcept override {}

    /// What came since the last call.
    std::vector<std::string> take() {
        std::lock_guard const lock(mutex_);
        return std::exchange(lines_, {});
    }
    /// How many lines contain the text.
    long count(std::string const & text) {
        std::lock_guard const lock(mutex_);
        return std::count_if(lines_.begin(), lines_.end(), [&](auto const & l) { return l.find(text) != l.npos; });
    }

    std::atomic<bool> debug{false}, traced{false};

private:
    void note(std::string line, diagnostics::Location const & at) {
        if (!std::string(at.file).starts_with(files_)) return;
        std::lock_guard const lock(mutex_);
        lines_.push_back(std::move(line));
    }
    std::string const files_;
    diagnostics::Sink * const before_;
    std::mutex mutex_;
    std::vector<std::string> lines_;
};

}  // namespace yon
