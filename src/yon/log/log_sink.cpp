// The logging layer behind the diagnostics port: what lower layers tell goes to the logger "YON" and to the tracer.
#include "yon/base/default_sink.h"
#include "yon/log/logger_factory.h"
#include "yon/log/record_buffer.h"
#include "yon/log/record_writer.h"
#include "yon/log/thread_trace.h"
#include "yon/log/trace_line.h"

namespace yon::diagnostics {

constinit DefaultSink defaultSink;

namespace {

/// Calls `tell` with the logger, unless this thread is writing a record: the logging layer does not report itself.
template <class Tell>
void toLog(Tell tell) noexcept {
    if (RecordBuffer::inUse()) return;
    try {
        tell(logger_factory::yon());
    } catch (...) {
    }
}

}  // namespace

void DefaultSink::exceptionThrown(Location const & where, istr message) noexcept {
    toLog([&](logger & log) { writeThrowRecord(log, where, message); });
}

void DefaultSink::record(Level level, istr tag, Location const & where, istr message) noexcept {
    toLog([&](logger & log) {
        switch (level) {
            case Level::data:
            case Level::debug:
                return writeDebugRecord(log, where.func, message, tag);
            case Level::info:
                return writeInfoRecord(log, message, tag);
            case Level::warning:
            case Level::error:
                return writeErrorRecord(log, where, message, tag);
        }
    });
}

bool DefaultSink::categoryOn(istr category) noexcept {
    bool on = false;
    toLog([&](logger & log) {
        bool const trace = category == "TRACE" || category == "TIMER.TRACE";
        on = log.debugOn() && (trace ? log.traceLogOn() : log.debugLogOn());
    });
    return on;
}

void DefaultSink::enter(Location const & where) noexcept {
    ThreadTrace * const trace = ThreadTrace::current();
    if (trace == nullptr) return;
    toLog([&](logger & log) { writeTraceLine(log, TraceEvent::entry, where.func, nullptr, trace->depth()); });
    try {
        trace->push(where);
    } catch (...) {
    }
}

void DefaultSink::leave(Location const &) noexcept {
    ThreadTrace * const trace = ThreadTrace::existing();
    if (trace == nullptr || trace->depth() == 0) return;
    toLog([&](logger & log) {
        writeTraceLine(log, TraceEvent::exit, trace->topFunction(), nullptr, trace->depth() - 1);
    });
    trace->pop();
}

void DefaultSink::callStack(CallStack & out) noexcept {
    ThreadTrace * const trace = ThreadTrace::existing();
    if (trace == nullptr) return;
    try {
        out = trace->stack();
    } catch (...) {
    }
}

}  // namespace yon::diagnostics
