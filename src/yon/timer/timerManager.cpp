#include "yon/timer/timerManager.h"

#include <ostream>

#include "yon/base/spin_lock.h"
#include "yon/base/throw.h"
#include "yon/base/trace_scope.h"
#include "yon/log/dumper.h"
#include "yon/timer/service_timer.h"
#include "yon/util/singleton_T.h"

namespace yon {

namespace {

constexpr char const * sourceFile = "src/yon/timer/timerManager";

/// Where the last service stopped: an id of one service means nothing to the next.
constinit std::atomic<ulong> lastSerial{0};

/// Managers that were destroyed, the oldest of them for good when there are more than this.
constinit SpinLock graveyardLock;
constinit std::array<TimerManager *, 64> graveyard{};
constinit std::size_t buried = 0;

}  // namespace

TimerManager::TimerManager() = default;

TimerManager::~TimerManager() = default;

void TimerManager::operator delete(TimerManager * manager, std::destroying_delete_t) noexcept {
    manager->shutDown();
    graveyardLock.lock();
    std::swap(manager, graveyard[buried++ % graveyard.size()]);
    graveyardLock.unlock();
    if (manager == nullptr) return;
    manager->~TimerManager();
    ::operator delete(manager);
}

TimerManager *& TimerManager::instance() {
    // The shared pointer may be cleared at any moment, so the caller gets one of its own.
    constinit thread_local TimerManager * manager = nullptr;
    do {
        manager = std::atomic_ref<TimerManager *>(
                      Singleton_T<TimerManager>::instance(sourceFile, 188, "yon::TimerManager::instance"))
                      .load(std::memory_order_acquire);
    } while (manager == nullptr);
    return manager;
}

long TimerManager::start() {
    constexpr char const * function = "yon::TimerManager::start";
    TraceScope const trace({sourceFile, 109, function});
    if (running_.load(std::memory_order_acquire)) return 0;
    {
        Lock const life(life_);
        if (stopped_ || running_.load(std::memory_order_relaxed)) return 0;
        Handle<TimerQueue> const queue =
            detail::LocatedNew<TimerQueue>{YON_LOCATION(sourceFile, 113, function)}(lastSerial.load());
        Handle<OwnedThread<TimerManager>> const thread = detail::LocatedNew<OwnedThread<TimerManager>>{
            YON_LOCATION(sourceFile, 116, function)}(this, "timer.timeout");
        thread->wait_ = &TimerManager::waitForCheck;
        thread->work_ = &TimerManager::check;
        thread->stop_ = &TimerManager::endChecks;
        checked_ = queue.get();
        thread->start();
        Lock const lock(mutex_);
        timerQueue_ = queue;
        timeoutThread_ = thread;
        running_.store(true, std::memory_order_release);
    }
    ServiceTimer::armAll();
    return 0;
}

void TimerManager::stop() {
    TraceScope const trace({sourceFile, 127, "yon::TimerManager::stop"});
    if (TimerCallbackThread::current() != nullptr) {
        YON_THROW(Exception, "stop() in a timer callback would wait for that callback");
    }
    {
        Lock const life(life_);
        // The first one destroys; others have waited until it is done.
        if (stopped_) return;
        shutDown();
    }
    Singleton_T<TimerManager>::destroy();
}

/// Ends both threads, the checking one first.
void TimerManager::shutDown() {
    Lock const life(life_);
    stopped_ = true;
    Handle<TimerQueue> queue;
    Handle<OwnedThread<TimerManager>> thread;
    {
        Lock const lock(mutex_);
        queue.swap(timerQueue_);
        thread.swap(timeoutThread_);
    }
    if (thread) thread->stop();
    if (!queue) return;
    queue->stop();
    lastSerial.store(queue->serial());
}

Handle<TimerQueue> TimerManager::queue() const {
    Lock const lock(mutex_);
    return timerQueue_;
}

bool TimerManager::setTimer(TimerId & id, ulong userTimerId, ulong interval, ITimerObject * object, ulong times,
                            void * param) {
    Handle<TimerQueue> const q = queue();
    return q && q->setTimer(id, userTimerId, interval, object, times, param);
}

bool TimerManager::resetTimer(TimerId id, ulong interval, ulong times) {
    Handle<TimerQueue> const q = queue();
    return q && q->resetTimer(id, interval, times);
}

bool TimerManager::killTimer(TimerId id) {
    Handle<TimerQueue> const q = queue();
    return q && q->killTimer(id);
}

bool TimerManager::killTimerAndWait(TimerId id) {
    if (TimerCallbackThread * const self = TimerCallbackThread::current()) return self->queue().killTimerAndWait(id);
    if (Handle<TimerQueue> const q = queue()) return q->killTimerAndWait(id);
    // A stop that is under way delivers what is left.
    Lock const life(life_);
    return false;
}

void TimerManager::onThreadExit(Thread * thread) {
    Handle<OwnedThread<TimerManager>> ended;
    Lock const lock(mutex_);
    if (timeoutThread_.get() == thread) ended.swap(timeoutThread_);
}

bool TimerManager::waitForCheck() {
    checked_->waitForCheck();
    return true;
}

void TimerManager::check() { checked_->check(); }

void TimerManager::endChecks() { checked_->endChecks(); }

std::vector<TimerInfo> TimerManager::timers() const {
    Handle<TimerQueue> const q = queue();
    return q ? q->timers() : std::vector<TimerInfo>();
}

dumper & TimerManager::dump(dumper & d) const {
    Handle<TimerQueue> const q = queue();
    d.push("yon::TimerManager", "@");
    if (q) {
        d.field("*m_timerQueue", *q);
    } else {
        d.field("*m_timerQueue", [](dumper & out) -> dumper & { return out.raw("(void*)0"); });
    }
    d.field("YON_TIMER_MAX_NUM", maxTimers);
    d.field("YON_TIMER_CHECK_TIME", TimerQueue::checkPeriod.toMicroSeconds());
    d.pop();
    return d;
}

std::ostream & TimerManager::dump(std::ostream & os) const {
    dumper d(os, false);
    dump(d);
    return os;
}

}  // namespace yon
