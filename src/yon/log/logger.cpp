#include "yon/log/logger.h"

#include <fstream>
#include <mutex>

#include "yon/log/console.h"
#include "yon/log/dumper_stl.h"
#include "yon/log/leak_report.h"
#include "yon/log/logger_factory.h"
#include "yon/log/logger_impl.h"
#include "yon/log/record_header.h"

namespace yon {

namespace {

String debugNameOf(istr name) {
    constexpr ulong suffix = 4;
    if (name.empty()) return String();
    if (name.endWith(".log")) return String(name.removeRight(suffix)) + ".debug.log";
    return String(name) + ".debug";
}

/// A callback that is running on this thread, and the one around it.
struct Running {
    LoggerCallback * callback;
    Running const * outer;
};
constinit thread_local Running const * running = nullptr;

/// Shows a line to a callback, unless the callback is just logging it.
void show(std::atomic<LoggerCallback *> const & to, istr line) noexcept {
    LoggerCallback * const callback = to.load(std::memory_order_acquire);
    if (callback == nullptr) return;
    for (Running const * r = running; r != nullptr; r = r->outer) {
        if (r->callback == callback) return;
    }
    Running const me{callback, running};
    running = &me;
    try {
        callback->onLog(line);
    } catch (...) {
    }
    running = me.outer;
}

template <class Switches>
bool stored(Switches const & switches, String const & name, bool negated) {
    auto const found = switches.find(name);
    return found != switches.end() && found->second.value() != negated;
}

}  // namespace

LoggerCallback::~LoggerCallback() = default;

logger::Impl::Impl(logger & owner)
    : LogChannel(
          owner.useLogfile_, owner.useDebugLogfile_, [](void * l) { static_cast<logger *>(l)->onTimer(nullptr); },
          &owner) {}

logger::Impl::~Impl() { delete id.load(std::memory_order_relaxed); }

logger::logger() : impl_(std::make_unique<Impl>(*this)) {}

logger::logger(logger const & other) : logger() { *this = other; }

logger & logger::operator=(logger const & other) {
    if (&other == this) return *this;
    for (auto const which : {&logger::debugOn_, &logger::traceOn_, &logger::dataLogOn_, &logger::debugLogOn_,
                             &logger::traceLogOn_, &logger::diagLogOn_, &logger::cmdLogOn_, &logger::commLogOn_,
                             &logger::hbLogOn_, &logger::appLogOn_, &logger::msgLogOn_, &logger::useLogfile_,
                             &logger::useDebugLogfile_, &logger::consoleOn_, &logger::mlcOn_}) {
        set(this->*which, on(other.*which));
    }
    LogFile::Limits const limits = other.impl_->limits();
    setMaxNumofMsg(limits.lines).setMaxCacheSize(limits.bytes);
    Impl::Switches appLogs;
    Impl::Switches msgLogs;
    {
        std::lock_guard const guard(other.impl_->names);
        appLogs = other.impl_->appLogs;
        msgLogs = other.impl_->msgLogs;
    }
    {
        std::lock_guard const guard(impl_->names);
        impl_->appLogs.swap(appLogs);
        impl_->msgLogs.swap(msgLogs);
    }
    filename(other.filename());
    debugFilename(other.debugFilename());
    return *this;
}

logger::~logger() { impl_->timer.stop(); }

void logger::open(char const * name) {
    filename(name);
    if (impl_->state.load(std::memory_order_acquire) != Impl::State::fresh) impl_->timer.start();
}

void logger::close() {
    impl_->timer.stop();
    flush();
}

void logger::flush() { impl_->flush(); }

void logger::onTimer(void *) {
    flush();
    if (idText() == logger_factory::yonId) flushUntimed();
}

std::string logger::id() const { return std::string(idText()); }

istr logger::idText() const noexcept {
    std::string const * const id = impl_->id.load(std::memory_order_acquire);
    return id != nullptr ? istr(*id) : istr();
}

logger & logger::mlcOn(bool b) noexcept {
    checkLeaks(b);
    return set(mlcOn_, b);
}

logger & logger::setMaxNumofMsg(ulong n) noexcept {
    impl_->maxLines.store(n, std::memory_order_relaxed);
    return *this;
}

logger & logger::setMaxCacheSize(ulong bytes) noexcept {
    impl_->maxBytes.store(bytes, std::memory_order_relaxed);
    return *this;
}

bool logger::logOn(String const & app) const {
    std::lock_guard const guard(impl_->names);
    return debugOn() && appLogOn() && stored(impl_->appLogs, app, false);
}

bool logger::logOff(String const & app) const {
    std::lock_guard const guard(impl_->names);
    return !(debugOn() && appLogOn()) || stored(impl_->appLogs, app, true);
}

void logger::logOn(String const & app, bool b) {
    std::lock_guard const guard(impl_->names);
    impl_->appLogs[app] = b;
}

bool logger::msgOn(String const & msg) const {
    std::lock_guard const guard(impl_->names);
    return debugOn() && msgLogOn() && stored(impl_->msgLogs, msg, false);
}

// Not the negation: that is how programs know it.
bool logger::msgOff(String const & msg) const {
    std::lock_guard const guard(impl_->names);
    return !(debugOn() && msgLogOn()) || stored(impl_->msgLogs, msg, false);
}

void logger::msgOn(String const & msg, bool b) {
    std::lock_guard const guard(impl_->names);
    impl_->msgLogs[msg] = b;
}

void logger::filename(istr const & name) {
    if (name == filename()) return;
    impl_->main.rename(name);
    impl_->debug.rename(debugNameOf(name));
}

String logger::filename() const { return impl_->main.name(); }

void logger::debugFilename(istr const & name) {
    if (name != debugFilename()) impl_->debug.rename(name);
}

String logger::debugFilename() const { return impl_->debug.name(); }

void logger::useLogfile(char const * name) {
    String const before = filename();
    if (name != nullptr) filename(name);
    String const now = filename();
    logger & out = logger_factory::yon();
    StringBuffer line;
    auto const start = [&] {
        appendHeaderPrefix(line.reset());
        return &line.append('[').append(out.idText()).append("] ");
    };
    auto const write = [&](istr text, istr value = istr()) {
        start()->append(text).append(value).append('\n');
        out.writeAndPrint(line.str());
    };
    constexpr ulong ruleWidth = 77;
    std::string const rule(ruleWidth, '=');
    write(rule);
    if (!consoleOn()) console::println("console output disabled, log file is " + now);
    if (now == before || before.empty()) {
        write("log file is ", now);
    } else {
        write("log file " + before + " changed to ", now);
    }
    write(rule);
    write("yon version ", "1.5.8-01 2009-09-04...09-14");
    write("yon compiled at ", "Sep 16 2009 09:30:20");
}

void logger::write(istr const & line) { impl_->main.append(line, impl_->limits()); }
void logger::write(char const * text, ulong length) { write(istr(text, length)); }
void logger::writeDebug(istr const & line) { impl_->debug.append(line, impl_->limits()); }
void logger::writeDebug(char const * text, ulong length) { writeDebug(istr(text, length)); }

void logger::writeOrPrint(istr const & line) {
    if (useDebugLogfile()) {
        writeDebug(line);
        show(impl_->debugCallback, line);
    } else {
        write(line);
        show(impl_->callback, line);
    }
    if (!useLogfile() && consoleOn()) console::print(line);
}

void logger::writeAndPrint(istr const & line) {
    write(line);
    show(impl_->callback, line);
    if (consoleOn()) console::print(line);
}

void logger::setCallback(LoggerCallback * callback) { impl_->callback.store(callback, std::memory_order_release); }
void logger::setDebugCallback(LoggerCallback * callback) {
    impl_->debugCallback.store(callback, std::memory_order_release);
}

logger::Counters logger::counters() const {
    Counters sum;
    impl_->main.count(sum);
    impl_->debug.count(sum);
    return sum;
}

dumper & logger::dump(dumper & d) const {
    Impl::Switches appLogs;
    Impl::Switches msgLogs;
    {
        std::lock_guard const guard(impl_->names);
        appLogs = impl_->appLogs;
        msgLogs = impl_->msgLogs;
    }
    LogFile::Limits const limits = impl_->limits();
    d.push("yon::logger", "@");
    d.field("debugOn_", debugOn()).field("traceOn_", traceOn()).field("dataLogOn_", dataLogOn());
    d.field("debugLogOn_", debugLogOn()).field("traceLogOn_", traceLogOn()).field("diagLogOn_", diagLogOn());
    d.field("cmdLogOn_", cmdLogOn()).field("commLogOn_", commLogOn()).field("hbLogOn_", hbLogOn());
    d.field("appLogOn_", appLogOn()).field("appLogs_", appLogs);
    d.field("msgLogOn_", msgLogOn()).field("msgLogs_", msgLogs);
    d.field("useLogfile_", useLogfile()).field("filename_", filename());
    d.field("useDebugLogfile_", useDebugLogfile()).field("filenameDebug_", debugFilename());
    d.field("maxNumofMsg_", limits.lines).field("maxCacheSize_", limits.bytes);
    d.field("consoleOn_", consoleOn()).field("mlcOn_", mlcOn());
    d.field("cache_", impl_->main.pending()).field("currSize_", impl_->main.runningSize());
    d.field("cacheDebug_", impl_->debug.pending()).field("currSizeDebug_", impl_->debug.runningSize());
    d.field("inited_", impl_->state.load(std::memory_order_relaxed) != Impl::State::fresh);
    d.pop();
    return d;
}

void logger::renameLargeFile(std::ofstream & file, String const & name, ulong maxSize, ulong addLen) {
    file.seekp(0, std::ios::end);
    auto const size = static_cast<longlong>(file.tellp());
    if (size < 0 || takes(static_cast<ulonglong>(size), addLen, maxSize)) return;
    file.close();
    String const backup = backupName(name);
    int const error = platform::moveFile(name.c_str(), backup.c_str());
    if (error != 0) {
        LogTrouble trouble;
        trouble.failedMove(backup, error);
        trouble.tell();
    }
    file.clear();
    file.open(name, std::ios::binary | std::ios::app);
}

void logger::renameLargeFile(String const & name, ulong maxSize, ulong addLen) {
    std::ofstream file(name, std::ios::binary | std::ios::app);
    if (file.is_open()) renameLargeFile(file, name, maxSize, addLen);
}

}  // namespace yon
