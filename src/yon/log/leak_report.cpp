#include "yon/log/leak_report.h"

#include <atomic>
#include <string>

#include "yon/base/here.h"
#include "yon/base/leak_checker.h"
#include "yon/log/logger_factory.h"
#include "yon/log/record.h"
#include "yon/platform/process_end.h"

namespace yon {

namespace {

constinit std::atomic<bool> wanted{false};

/// Each line of the checker's report is a record.
class LeakReport {
public:
    LeakReport() : log_(logger_factory::yon()), toError_(!log_.useLogfile() || log_.filename().empty()) {}

    void write() const {
        std::size_t count = 0;
        std::size_t bytes = 0;
        for (MLC_Entry const & e : MemLeakChecker::snapshot()) {
            std::string const place =
                std::string(SafeStr(e.file)) + ':' + std::to_string(e.line) + ' ' + SafeStr(e.func);
            line(place + ": " + amounts(e.count, e.bytes));
            count += e.count;
            bytes += e.bytes;
        }
        line("total: " + amounts(count, bytes));
    }

private:
    static std::string amounts(std::size_t count, std::size_t bytes) {
        return std::to_string(count) + " blocks, " + std::to_string(bytes) + " bytes";
    }

    void line(std::string const & text) const {
        diagnostics::Location const here = YON_HERE;
        writeInfoLog(log_, here.file, here.line, here.func, text.c_str(), "LEAK");
        if (!toError_) return;
        std::string const shown = "leak: " + text + '\n';
        platform::tellStandardError(shown.data(), shown.size());
    }

    logger & log_;
    bool const toError_;
};

/// Made before other static objects, and so gone after them: what they own is released when this reports.
struct AtEnd {
    ~AtEnd() {
        if (!wanted.load(std::memory_order_relaxed)) return;
        try {
            LeakReport().write();
        } catch (...) {
        }
    }
};
[[gnu::init_priority(101)]] AtEnd const atEnd;

}  // namespace

void checkLeaks(bool on) noexcept {
    wanted.store(on, std::memory_order_relaxed);
    MemLeakChecker::enable(on);
}

}  // namespace yon
