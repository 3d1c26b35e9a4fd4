// Helpers for tests of the log.
#pragma once

#include <algorithm>
#include <mutex>
#include <string>

#include "yon/log/logger_factory.h"
#include "yon/mt/simple_thread.h"

namespace yon::testing {

/// Notes what a logger is given for its main file and, behind "debug: ", for its debug file.
class Lines {
public:
    explicit Lines(logger & log) : log_(log) { listen(&main_, &debug_); }
    ~Lines() { listen(nullptr, nullptr); }

    /// What came since the last call; date-time texts give way to one of the same length.
    std::string take() {
        std::lock_guard const guard(mutex_);
        std::string text = std::exchange(text_, {});
        for (std::size_t i = 0; i + dateTime.size() <= text.size(); ++i) {
            std::string form = text.substr(i, dateTime.size());
            std::replace_if(
                form.begin(), form.end(), [](char c) { return c >= '0' && c <= '9'; }, '9');
            if (form == dateTime) text.replace(i, form.size(), form);
        }
        return text;
    }
    /// What headers of the calling thread begin with.
    static std::string prefix() { return std::string(dateTime) + SimpleThread::current().sThreadId_; }

private:
    static constexpr std::string_view dateTime = "9999-99-99 99:99:99.999";

    struct Callback : LoggerCallback {
        Callback(Lines & lines, char const * label) : lines_(lines), label_(label) {}
        void onLog(istr line) override {
            std::lock_guard const guard(lines_.mutex_);
            lines_.text_ += label_ + std::string(line);
        }
        Lines & lines_;
        std::string label_;
    };

    void listen(LoggerCallback * main, LoggerCallback * debug) {
        log_.setCallback(main);
        log_.setDebugCallback(debug);
    }

    logger & log_;
    std::mutex mutex_;
    std::string text_;
    Callback main_{*this, ""};
    Callback debug_{*this, "debug: "};
};

/// A line of 118 characters, laid out another way than the log does it.
inline std::string ruled(char fill, std::string const & left, std::string right) {
    std::string line = (left.empty() ? left : left.substr(0, 117) + ' ') + std::string(118, fill);
    line.resize(118);
    if (!right.empty()) right = ' ' + (right.size() > 117 ? right.substr(right.size() - 117) : right);
    return line.replace(118 - right.size(), right.size(), right) + '\n';
}

}  // namespace yon::testing
