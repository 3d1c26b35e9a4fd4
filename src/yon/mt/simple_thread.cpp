#include "yon/mt/simple_thread.h"

#include "yon/base/net.h"
#include "yon/base/throw.h"
#include "yon/base/trace_scope.h"
#include "yon/log/dumper.h"
#include "yon/mt/lock.h"
#include "yon/mt/thread_entry.h"
#include "yon/mt/thread_factory.h"
#include "yon/mt/uncaught.h"
#include "yon/platform/platform.h"
#include "yon/platform/threads.h"
#include "yon/platform/wall_tick.h"

namespace yon {

using detail::ThreadEntry;

namespace {

constexpr diagnostics::Location at(unsigned int line, char const * func) { return {"src/yon/mt/thread", line, func}; }

void recordInfo(diagnostics::Location const & where, istr text) {
    diagnostics::record(diagnostics::Level::info, "INFO", where, text);
}

}  // namespace

SimpleThread::SimpleThread(ThreadOwner * owner, char const * name)
    : owner_(owner), name_(normalizeName(name)), fullnameNow_(&name_) {}

SimpleThread::~SimpleThread() = default;

dumper & SimpleThread::dump(dumper & d) const {
    d.push("yon::SimpleThread", "@");
    d.field("refcount", __getRef()).field("id()", started() ? id() : ThreadId());
    d.field("started()", started()).field("activeStopping()", activeStopping()).field("living()", living());
    d.field("name()", name()).field("fullname()", fullname());
    d.pop();
    return d;
}

// --- stopping ---

/// A reference for the time of a call; none to an object that belongs to no handle, which it would delete.
Handle<SimpleThread> SimpleThread::held() noexcept { return __getRef() > 0 ? this : nullptr; }

bool SimpleThread::isCaller() const noexcept {
    ThreadEntry const * const entry = ThreadEntry::find();
    return entry != nullptr && entry->thread_ == this;
}

void SimpleThread::stop() {
    Handle<SimpleThread> const hold = held();
    TraceScope const trace(at(832, "yon::SimpleThread::stop"));
    onStop_i();
    if (started()) join();
}

bool SimpleThread::stop(Time limit) {
    Handle<SimpleThread> const hold = held();
    TraceScope const trace(at(848, "yon::SimpleThread::stop"));
    onStop_i();
    return !started() || join(std::max(limit, Time::milliSeconds(10)));
}

void SimpleThread::join() {
    TraceScope const trace(at(864, "yon::SimpleThread::join"));
    if (!isCaller()) getThreadControl().join();
}

bool SimpleThread::join(Time limit) { return join_i(limit, limit); }

bool SimpleThread::join_i(Time limit, Time told) {
    TraceScope const trace(at(873, "yon::SimpleThread::join"));
    if (isCaller() || getThreadControl().join(limit)) return true;
    detach();
    recordInfo(at(885, "yon::SimpleThread::join"),
               "thread " + fullname() + " not stopped in " + std::to_string(told.toSeconds()) + " seconds.");
    return false;
}

SimpleThread & SimpleThread::living(bool alive) {
    if (alive) {
        YON_THROW_AT(at(934, "yon::SimpleThread::living"), Exception,
                     "living(bool) parameter could not be true, use livingEnd() instead of living(false)");
    }
    livingEnd();
    return *this;
}

void SimpleThread::livingEnd() {
    Handle<SimpleThread> const hold = held();
    TraceScope const trace(at(1110, "yon::SimpleThread::livingEnd"));
    endLife();
    onStop();
}

void SimpleThread::endLife() {
    living_.store(false, std::memory_order_release);
    Lock const lock(monitor_);
    monitor_.notifyAll();
}

// --- the owner ---

ThreadOwner * SimpleThread::owner() const noexcept {
    Lock const lock(ownerMutex_);
    return owner_;
}

SimpleThread & SimpleThread::owner(ThreadOwner * owner) noexcept {
    {
        Lock const lock(ownerMutex_);
        owner_ = owner;
    }
    if (!isCaller()) callingOwner_.wait(true, std::memory_order_acquire);
    return *this;
}

/// Sets the owner if there is none; false when the thread does not tell it any more.
bool SimpleThread::adopt(ThreadOwner * newOwner) {
    Lock const lock(ownerMutex_);
    if (ended_) return false;
    if (owner_ == nullptr) owner_ = newOwner;
    return true;
}

void SimpleThread::on_thread_exit() {
    ThreadOwner * told = nullptr;
    {
        Lock const lock(ownerMutex_);
        ended_ = true;
        if (!activeStopping()) told = owner_;
        callingOwner_.store(told != nullptr, std::memory_order_relaxed);
    }
    if (told == nullptr) return;
    // Not under the lock; but who takes the owner away waits for this.
    struct Called {
        std::atomic<bool> & flag;
        ~Called() {
            flag.store(false, std::memory_order_release);
            flag.notify_all();
        }
    } const called{callingOwner_};
    told->onThreadExit(this);
}

// --- wait and notify ---

void SimpleThread::wait() const {
    Lock const lock(monitor_);
    if (living()) monitor_.wait();
}

bool SimpleThread::wait(Time const & limit) const {
    Lock const lock(monitor_);
    return !living() || monitor_.timedWait(limit);
}

void SimpleThread::notify() {
    Lock const lock(monitor_);
    monitor_.notify();
}

// --- what is known of the thread ---

ThreadInfo SimpleThread::info() const {
    ThreadInfo copy;
    copy.thread_ = const_cast<SimpleThread *>(this);
    copy.sThreadId_ = threadIdString();
    copy.updateDateTime();
    return copy;
}

ThreadInfo const & SimpleThread::current() {
    ThreadEntry & entry = ThreadEntry::get();
    longlong const tick = platform::wallTick();
    if (tick != entry.tick_) [[unlikely]] {
        entry.tick_ = tick;
        entry.updateDateTime();
    }
    return entry;
}

String const & SimpleThread::threadIdString() const {
    ThreadEntry const * const entry = ThreadEntry::find();
    // Its own thread knows it anew after a fork.
    return entry != nullptr && entry->thread_ == this ? entry->sThreadId_ : identity_i();
}

String const & SimpleThread::identity_i() const {
    if (!identityKnown_.load(std::memory_order_acquire)) {
        ThreadId const self = id();
        Lock const lock(ownerMutex_);
        if (identity_.empty()) identity_ = detail::identityText(self, true);
        identityKnown_.store(true, std::memory_order_release);
    }
    return identity_;
}

Time SimpleThread::currDateTime() const {
    static_cast<void>(id());
    return Time::now();
}

String SimpleThread::currDateTimeString() const { return currDateTime().toDateTime(); }

void SimpleThread::destroyThreadFactory() { ThreadFactory::destroy_i(); }

// --- the life of the thread ---

void SimpleThread::run_i() {
    TraceScope const trace(at(1016, "yon::SimpleThread::run_i"));
    // Whatever the body lets out.
    struct Ending {
        SimpleThread & thread;
        ~Ending() { thread.end_i(); }
    } const ending{*this};
    begin_i();
    recordInfo(at(1023, "yon::SimpleThread::run_i"), "thread begin.");
    run();
}

void SimpleThread::begin_i() {
    ThreadEntry::begin(*this);
    fullname_ = name_ + identity_i();
    fullnameNow_.store(&fullname_, std::memory_order_release);
    platform::nameThisThread(name_);
}

void SimpleThread::end_i() noexcept {
    try {
        endLife();
        on_thread_exit();
    } catch (...) {
        detail::recordUncaught();
    }
    recordInfo(at(1033, "yon::SimpleThread::run_i"), "thread end.");
    ThreadEntry::end();
}

void SimpleThread::run() {
    TraceScope const trace(at(1042, "yon::SimpleThread::run"));
    if (!onBirth_i()) return;
    while (living()) {
        if (!onWait_i()) continue;
        if (!living()) break;
        onWork_i();
    }
    onDeath_i();
}

void SimpleThread::onWork() {
    if (!onLoop()) endLife();
}

bool SimpleThread::onBirth_i() {
    TraceScope const trace(at(1061, "yon::SimpleThread::onBirth_i"));
    if (onBirth()) return true;
    recordInfo(at(1065, "yon::SimpleThread::onBirth_i"), "thread begin failure, won't enter run loop.");
    endLife();
    return false;
}

bool SimpleThread::onWait_i() {
    TraceScope const trace(at(1074, "yon::SimpleThread::onWait_i"));
    bool const ready = onWait();
    if (!ready && diagnostics::categoryOn("TRACE")) {
        diagnostics::record(diagnostics::Level::debug, "TRACE", at(1078, "yon::SimpleThread::onWait_i"),
                            "wait failure, won't exec onWork().");
    }
    return ready;
}

void SimpleThread::onWork_i() {
    TraceScope const trace(at(1086, "yon::SimpleThread::onWork_i"));
    onWork();
}

void SimpleThread::onDeath_i() {
    TraceScope const trace(at(1093, "yon::SimpleThread::onDeath_i"));
    onDeath();
}

void SimpleThread::onStop_i() {
    TraceScope const trace(at(1101, "yon::SimpleThread::onStop_i"));
    activeStopping_.store(true, std::memory_order_release);
    livingEnd();
}

}  // namespace yon
