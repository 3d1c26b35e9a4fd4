#include "yon/base/location_text.h"
#include "yon/log/dumper.h"
#include "yon/log/logger.h"
#include "yon/log/record.h"
#include "yon/log/record_buffer.h"
#include "yon/log/record_header.h"
#include "yon/log/thread_trace.h"
#include "yon/log/trace_line.h"
#include "yon/log/tracer.h"
#include "yon/util/singleton_T.h"

namespace yon {

namespace {

CallStack & sharedCallStack() {
    ThreadTrace * const trace = ThreadTrace::current();
    return trace != nullptr ? trace->sharedStack() : ThreadTrace::currentStack();
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

CallStack & tracer::callStack() { return sharedCallStack(); }
CallStack const & tracer::callStack() const { return sharedCallStack(); }

void tracer::push(char const * file, unsigned line, char const * func) {
    if (ThreadTrace * const trace = ThreadTrace::current()) trace->push({file, line, func});
}

void tracer::pop() noexcept {
    if (ThreadTrace * const trace = ThreadTrace::existing()) trace->pop();
}

tracer const & tracer::separator(char const * text) const {
    ThreadTrace::currentStack().separator(text);
    return *this;
}

istr tracer::separator() const { return ThreadTrace::currentStack().separator(); }

std::ostream & tracer::dump(std::ostream & os) const {
    std::string const text = printed(ThreadTrace::currentStack());
    return os.write(text.data(), static_cast<std::streamsize>(text.size()));
}

dumper & tracer::dump(dumper & d) const { return d << istr(printed(ThreadTrace::currentStack())); }

void tracer::destroy_current_stack() noexcept {
    if (ThreadTrace * const trace = ThreadTrace::existing()) trace->remove();
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
    ThreadTrace * const trace = ThreadTrace::existing();
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
        RecordBuffer header;
        appendHeaderPrefix(header.text());
        header.text().append('[').append(log.idText()).append(']').append('\0');

        std::string call = isEntry ? "TRACE " : "TRACE~";
        TraceEntry::indentString(call, depth, fill);
        if (depth != 0) call += ' ';
        call.append(func).append("(");
        if (!info.empty()) call.append(" ").append(info).append(" ");
        call += ") ";
        writeEntryLog(log, header.text().data(), call.c_str(), "", fill);
    } catch (...) {
    }
}

}  // namespace yon
