#include "yon/log/leak_report.h"

#include <atomic>
#include <string>
#include <vector>

#include "yon/base/chars.h"
#include "yon/base/leak_checker.h"
#include "yon/log/logger_factory.h"
#include "yon/log/record_header.h"
#include "yon/platform/process_end.h"

namespace yon {

namespace {

constinit std::atomic<bool> wanted{false};

std::string amounts(std::size_t count, std::size_t bytes) {
    return std::to_string(count) + " blocks, " + std::to_string(bytes) + " bytes";
}

/// A record for each place, handed over at once: a file in trouble holds up the end of the process only once.
void report() {
    std::vector<MLC_Entry> const places = MemLeakChecker::snapshot();
    logger & log = logger_factory::yon();
    StringBuffer records;
    std::string shown;
    auto const add = [&](std::string const & text) {
        appendHeader(records, log, "LEAK");
        records.append(' ').append(text).append('\n');
        shown += "leak: " + text + '\n';
    };
    MLC_Entry total{};
    for (MLC_Entry const & e : places) {
        std::string const place = std::string(SafeStr(e.file)) + ':' + std::to_string(e.line) + ' ' + SafeStr(e.func);
        add(place + ": " + amounts(e.count, e.bytes));
        total.count += e.count;
        total.bytes += e.bytes;
    }
    add("total: " + amounts(total.count, total.bytes));
    log.writeAndPrint(records.str());
    log.flush();
    if (!log.useLogfile() || log.filename().empty()) platform::tellStandardError(shown.data(), shown.size());
}

/// Made before other static objects, and so gone after them: what they own is released when this reports.
struct AtEnd {
    ~AtEnd() {
        if (!wanted.load(std::memory_order_relaxed)) return;
        try {
            report();
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
