#include "yon/log/record.h"

#include "yon/base/location_text.h"
#include "yon/log/logger.h"
#include "yon/log/message_stream.h"
#include "yon/log/record_buffer.h"
#include "yon/log/record_header.h"
#include "yon/log/record_writer.h"
#include "yon/log/ruled_line.h"
#include "yon/log/thread_trace.h"
#include "yon/mt/simple_thread.h"
#include "yon/mt/thread_entry.h"

namespace yon {

namespace {

using diagnostics::Location;

constexpr char const * at = "\n        AT: ";
constexpr char const * stackSeparator = "\n            ";

/// The time is that of this moment: what the thread knows may be some milliseconds old.
void appendPrefix(StringBuffer & out, ThreadInfo const & thread) {
    Time const now = Time::now();
    LogThread * const mine = LogThread::current();
    out.append(mine != nullptr ? mine->dateTime.at(now) : DateTimeText().at(now)).append(thread.sThreadId_);
}

/// Builds a record in the thread's buffer and hands it over. Nothing gets out: a record that cannot be made is lost.
template <class Build, class HandOver>
void write(Build build, HandOver handOver) noexcept {
    try {
        RecordBuffer buffer;
        build(buffer.text());
        handOver(buffer.text().str());
    } catch (...) {
    }
}

/// The parts of a framed block. A null head, title, footer or closing text is left out.
struct Block {
    istr head;
    istr title;
    istr body;
    istr footer;
    istr closing;
};

void appendBlock(StringBuffer & out, logger const & log, Block const & block) {
    if (block.head.data() != nullptr) {
        RecordBuffer header;
        appendHeader(header.text(), log, block.title);
        out.append('\n');
        RuledLine(out, '-').left(header.text()).right(block.head);
    }
    if (!block.title.empty()) {
        RuledLine(out, ' ').right(block.title);
        RuledLine(out, ' ').right('=', block.title.size());
    }
    out.append(block.body).append('\n');
    if (!block.footer.empty()) {
        RuledLine(out, ' ').right('_', block.footer.size());
        RuledLine(out, ' ').right(block.footer);
    }
    if (block.closing.data() != nullptr) RuledLine(out, '-').right(block.closing);
    out.append('\n');
}

void writeBlock(logger & log, Block const & block) noexcept {
    write([&](StringBuffer & out) { appendBlock(out, log, block); },
          [&](istr record) {
              log.writeAndPrint(record);
              log.flush();
          });
}

/// A block with a title, a labelled text, the location, the call stack and what may follow them.
void writeFramed(logger & log, istr title, istr label, istr text, Location const & where, istr tailLabel = nullptr,
                 istr tail = nullptr) noexcept {
    try {
        CallStack const & calls = ThreadTrace::currentStack().separator(stackSeparator);
        std::string body = label;
        body += std::string_view(text);
        detail::appendLocation(body, Current(where), at);
        body += "\nCALL STACK: ";
        detail::appendCallStack(body, calls, stackSeparator);
        body += std::string_view(tailLabel);
        body += std::string_view(tail);
        writeBlock(log, {"", title, body, "", ""});
    } catch (...) {
    }
}

void writeFailure(logger & log, istr title, istr condition, Location const & where, istr willDo) noexcept {
    writeFramed(log, title, " CONDITION: ", condition, where, willDo.empty() ? nullptr : "\n   WILL DO: ", willDo);
}

}  // namespace

void appendHeaderPrefix(StringBuffer & out) { appendPrefix(out, detail::ThreadEntry::get()); }

void appendHeader(StringBuffer & out, logger const & log, istr tag, EmptyTag emptyTag) {
    ThreadInfo const & thread = detail::ThreadEntry::get();
    appendPrefix(out, thread);
    out.append('[').append(log.idText()).append(']');
    if (!tag.empty() || emptyTag == EmptyTag::shown) out.append('[').append(tag).append(']');
    if (thread.thread_ != nullptr) out.append('{').append(thread.thread_->name()).append('}');
}

void writeDebugRecord(logger & log, istr func, istr message, istr tag) noexcept {
    write(
        [&](StringBuffer & out) {
            appendHeader(out, log, tag, EmptyTag::shown);
            out.append('[').append(func).append("] ").append(message).append('\n');
        },
        [&](istr record) { log.writeOrPrint(record); });
}

void writeInfoRecord(logger & log, istr message, istr tag) noexcept {
    write(
        [&](StringBuffer & out) {
            appendHeader(out, log, tag);
            out.append(' ').append(message).append('\n');
        },
        [&](istr record) {
            log.writeAndPrint(record);
            log.flush();
        });
}

void writeErrorRecord(logger & log, Location const & where, istr cause, istr severity) noexcept {
    writeFramed(log, severity, "     CAUSE: ", cause, where);
}

void writeThrowRecord(logger & log, Location const & where, istr cause) noexcept {
    writeFramed(log, "THROWING", "     CAUSE: ", cause, where);
}

void writeDataLog(logger & log, char const *, unsigned, char const *, char const * text) noexcept {
    write([&](StringBuffer & out) { out.append(istr(text)).append('\n'); },
          [&](istr record) { log.writeAndPrint(record); });
}

void writeDebugLog(logger & log, char const *, unsigned, char const * func, char const * message,
                   char const * tag) noexcept {
    writeDebugRecord(log, func, message, tag);
}

void writeInfoLog(logger & log, char const *, unsigned, char const *, char const * message,
                  char const * tag) noexcept {
    writeInfoRecord(log, message, tag);
}

void writeEntryLog(logger & log, char const * left1, char const * left2, char const * right, char fill) noexcept {
    istr const first = left1;
    istr const second = left2;
    istr const last = right;
    write(
        [&](StringBuffer & out) {
            RecordBuffer start;
            istr const text = start.text().append(first).append(' ').append(second);
            if (ulonglong{text.size()} + last.size() < RuledLine::width) {
                RuledLine(out, fill).right(last).left(text);
                return;
            }
            out.append(text);
            if (!last.empty()) out.append(' ').append(last);
            out.append('\n');
        },
        [&](istr record) { log.writeAndPrint(record); });
}

void writeLog(logger & log, char const * head, char const * title, char const * body, char const * footer,
              char const * closing) noexcept {
    writeBlock(log, {head, title, body, footer, closing});
}

void writeErrorLog(logger & log, char const * file, unsigned line, char const * func, char const * cause,
                   char const * severity) noexcept {
    writeErrorRecord(log, {file, line, func}, cause, severity);
}

void writeExcptLog(logger & log, char const * file, unsigned line, char const * func, char const * what) noexcept {
    writeFramed(log, "EXCEPTION", "     CAUSE: ", "Catch a exception.", {file, line, func}, "\n\n", what);
}

void detail::writeAssertFailure(logger & log, istr condition, Location const & where, istr willDo) noexcept {
    writeFailure(log, "ASSERT FAILURE", condition, where, willDo);
}

void detail::writeEnsureFailure(logger & log, istr condition, Location const & where, istr willDo) noexcept {
    writeFailure(log, "ENSURE FAILURE", condition, where, willDo);
}

void assertFailure(logger & log, char const * condition, char const * file, unsigned line, char const * func,
                   char const * willDo) noexcept {
    detail::writeAssertFailure(log, condition, {file, line, func}, willDo);
}

void ensureFailure(logger & log, char const * condition, char const * file, unsigned line, char const * func,
                   char const * willDo) noexcept {
    detail::writeEnsureFailure(log, condition, {file, line, func}, willDo);
}

void exceptionThrown(logger & log, char const * file, unsigned line, char const * func, char const * cause) noexcept {
    writeThrowRecord(log, {file, line, func}, cause);
}

}  // namespace yon
