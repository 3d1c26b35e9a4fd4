#include "yon/base/location_text.h"
#include "yon/log/dumper.h"
#include "yon/log/logger.h"
#include "yon/log/record.h"
#include "yon/log/record_header.h"
#include "yon/log/thread_trace.h"
#include "yon/log/trace_line.h"
#include "yon/log/tracer.h"
#include "yon/util/singleton_T.h"

namespace yon {

namespace {

CallStack & callStackOf(ThreadTrace * trace) { return trace != nullptr ? trace->stack() : ThreadTrace::inMap(); }
CallStack & sharedCallStackOf(ThreadTrace * trace) {
    return trace != nullptr ? trace->sharedStack() : ThreadTrace::inMap();
}

std::string printed(CallStack const & calls) {
    std::string text;
    detail::appendCallStack(text, calls, calls.separator());
    return text;
}

}  // namespace

tracer *& tracer::instance() {
    return Singleton_T<tracer>::instance("src/yon/log/log_tracer", __LINE__, "yon::tracer::instance");
}

void tracer::destroy() {
    ThreadTrace::destroyAll();
    Singleton_T<tracer>::destroy();
}

CallStack & tracer::callStack() { return sharedCallStackOf(ThreadTrace::current()); }
CallStack const & tracer::callStack() const { return sharedCallStackOf(ThreadTrace::current()); }

void tracer::push(char const * file, unsigned line, char const * func) {
    if (ThreadTrace * const trace = ThreadTrace::current()) trace->push({file, line, func});
}

void tracer::pop() noexcept {
    if (ThreadTrace * const trace = ThreadTrace::current()) trace->pop();
}

tracer const & tracer::separator(char const * text) const {
    callStackOf(ThreadTrace::current()).separator(text);
    return *this;
}

istr tracer::separator() const { return callStackOf(ThreadTrace::current()).separator(); }

std::ostream & tracer::dump(std::ostream & os) const {
    std::string const text = printed(callStackOf(ThreadTrace::current()));
    return os.write(text.data(), static_cast<std::streamsize>(text.size()));
}

dumper & tracer::dump(dumper & d) const { return d << istr(printed(callStackOf(ThreadTrace::current()))); }

void tracer::destroy_current_stack() noexcept {
    if (ThreadTrace * const trace = ThreadTrace::current()) trace->remove();
}

void printTraceStack(std::ostream & os) { tracer::instance()->dump(os); }

TraceEntry::TraceEntry(logger & log, char const * file, unsigned line, char const * func, LogType type,
                       char const * info)
    : log_(log), type_(type), info_(info != nullptr ? info : "") {
    ThreadTrace * const trace = ThreadTrace::current();
    if (trace == nullptr) return;
    if ((type & entry) != 0) writeTraceLine(log_, TraceEvent::entry, func, info_, trace->depth());
    trace->push({file, line, func});
}

TraceEntry::~TraceEntry() {
    ThreadTrace * const trace = ThreadTrace::current();
    if (trace == nullptr || trace->depth() == 0) return;
    if ((type_ & exit) != 0) {
        writeTraceLine(log_, TraceEvent::exit, trace->topFunction(), info_, trace->depth() - 1);
    }
    trace->pop();
}

void TraceEntry::indentString(std::string & s, unsigned long depth, char c) { s.append(4 * std::size_t{depth}, c); }

void writeTraceLine(logger & log, TraceEvent event, istr func, istr info, unsigned long depth) noexcept {
    if (!log.traceOn()) return;
    try {
        bool const isEntry = event == TraceEvent::entry;
        char const fill = isEntry ? '.' : '_';
        StringBuffer header;
        appendHeaderPrefix(header);
        header.append('[').append(log.id()).append("]\0", 2);

        std::string call = isEntry ? "TRACE " : "TRACE~";
        TraceEntry::indentString(call, depth, fill);
        if (depth != 0) call += ' ';
        call.append(func).append("(");
        if (!info.empty()) call.append(" ").append(info).append(" ");
        call += ") ";
        writeEntryLog(log, header.data(), call.c_str(), "", fill);
    } catch (...) {
    }
}

}  // namespace yon
