// Helpers for tests of the log.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "yon/log/logger_factory.h"
#include "yon/mt/simple_thread.h"

namespace yon::testing {

/// Notes what a logger is given for its main file ("") and its debug file ("debug: ").
class Lines {
public:
    explicit Lines(logger & log) : log_(log) {
        log_.setCallback(&main_);
        log_.setDebugCallback(&debug_);
    }
    ~Lines() {
        log_.setCallback(nullptr);
        log_.setDebugCallback(nullptr);
    }

    /// What came since the last call, with masked times.
    std::string take() {
        std::lock_guard const guard(mutex_);
        return masked(std::exchange(text_, {}));
    }

    /// The date-time text gives way to one of the same length.
    static std::string masked(std::string text) {
        static constexpr char const * form = "9999-99-99 99:99:99.999";
        for (std::size_t i = 0; i + size <= text.size(); ++i) {
            std::size_t n = 0;
            while (n < size && (form[n] == '9' ? text[i + n] >= '0' && text[i + n] <= '9' : text[i + n] == form[n]))
                ++n;
            if (n == size) text.replace(i, size, form);
        }
        return text;
    }
    /// The masked date-time text and the identity text of the calling thread.
    static std::string prefix() { return "9999-99-99 99:99:99.999" + SimpleThread::current().sThreadId_; }

private:
    static constexpr std::size_t size = 23;

    struct Callback : LoggerCallback {
        Callback(Lines & lines, char const * label) : lines_(lines), label_(label) {}
        void onLog(istr line) override {
            std::lock_guard const guard(lines_.mutex_);
            lines_.text_ += label_ + std::string(line);
        }
        Lines & lines_;
        std::string label_;
    };

    logger & log_;
    std::mutex mutex_;
    std::string text_;
    Callback main_{*this, ""};
    Callback debug_{*this, "debug: "};
};

/// A line of 118 characters, laid out another way than the log does it.
inline std::string ruled(char fill, std::string left, std::string right) {
    left = left.empty() ? left : left.substr(0, 117) + ' ';
    right = right.empty() ? right : ' ' + (right.size() > 117 ? right.substr(right.size() - 117) : right);
    std::string line = left + std::string(118, fill);
    line.resize(118);
    return line.replace(118 - right.size(), right.size(), right) + '\n';
}

}  // namespace yon::testing
