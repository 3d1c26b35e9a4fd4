#include "yon/util/state.h"

#include <algorithm>
#include <memory>
#include <sstream>

#include "yon/base/leak_checker.h"
#include "yon/base/time.h"
#include "yon/base/version_text.h"
#include "yon/log/dumper.h"
#include "yon/log/logger_factory.h"
#include "yon/log/trace_mirror.h"
#include "yon/mt/thread_factory.h"
#include "yon/platform/locks.h"
#include "yon/pml/pml_stream.h"
#include "yon/timer/timerManager.h"

namespace yon {

namespace {

using pml::Unit;

/// Adds an unnamed child, to be filled.
Unit & addItem(Unit & list, istr type) {
    auto item = std::make_unique<Unit>();
    item->type(type);
    list.addChild(item.get());
    return *item.release();
}

template <class T>
void add(Unit & parent, istr name, istr type, T const & value) {
    Unit & child = parent[name];
    child.type(type);
    child << value;
}

void addProcess(Unit & root) {
    add(root, "version", "", istr(YON_VERSION_TEXT));
    add(root, "process", "ulong", static_cast<ulong>(platform::currentProcessId()));
    add(root, "time", "", Time::now().toDateTime());
}

void addLoggers(Unit & root) {
    Unit & loggers = root["loggers"];
    logger_factory::forEach([&](logger & log) {
        pml::stream settings;
        log.codec(settings);
        logger::Counters const counters = log.counters();
        Unit & node = loggers[istr(log.id())];
        node << settings;
        Unit & counts = node["counters"];
        add(counts, "written", "ulonglong", counters.written);
        add(counts, "dropped", "ulonglong", counters.dropped);
        add(counts, "failedOpens", "ulonglong", counters.failedOpens);
        add(counts, "rotations", "ulonglong", counters.rotations);
    });
}

/// The traced calls of a thread, the most recent one first.
void addStack(Unit & thread, unsigned id) {
    TraceMirror::forEach([&](TraceMirror const & mirror) {
        if (mirror.threadId() != id) return;
        Unit & stack = thread["stack"];
        for (unsigned i = std::min(mirror.size(), TraceMirror::capacity); i-- > 0;) {
            std::ostringstream call;
            call << Current(mirror.at(i));
            addItem(stack, "") << String(call.str());
        }
    });
}

void addThreads(Unit & root) {
    Unit & threads = root["threads"];
    for (KnownThread const & known : ThreadFactory::instance()->threads()) {
        Unit & thread = addItem(threads, "thread");
        ulong const id = static_cast<unsigned int>(known.id);
        add(thread, "id", "ulong", id);
        add(thread, "identity", "", known.identity);
        if (known.ofLibrary) add(thread, "name", "", known.name);
        add(thread, "living", "bool", known.living);
        addStack(thread, id);
    }
}

void addTimers(Unit & root) {
    Unit & timers = root["timers"];
    for (TimerInfo const & info : TimerManager::instance()->timers()) {
        Unit & timer = addItem(timers, "timer");
        add(timer, "userTimerId", "ulong", info.userTimerId);
        add(timer, "remaining", "longlong", info.remaining.toMilliSeconds());
        add(timer, "interval", "longlong", info.interval.toMilliSeconds());
        add(timer, "times", "ulong", info.times);
        add(timer, "status", "", istr(info.status == TimerStatus::busy ? "BUSY" : "PAUSED"));
    }
}

void addLeakChecker(Unit & root) {
    Unit & checker = root["leakChecker"];
    add(checker, "on", "bool", MemLeakChecker::enabled());
    add(checker, "blocks", "ulonglong", static_cast<ulonglong>(MemLeakChecker::count()));
    add(checker, "bytes", "ulonglong", static_cast<ulonglong>(MemLeakChecker::bytes()));
}

}  // namespace

dumper & dumpState(dumper & d) {
    Unit root;
    root.name("state");
    addProcess(root);
    addLoggers(root);
    addThreads(root);
    addTimers(root);
    addLeakChecker(root);
    return d.raw(root.str(pml::ShowMode::FORMATTED));
}

}  // namespace yon
