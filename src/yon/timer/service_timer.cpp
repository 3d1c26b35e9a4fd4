#include "yon/timer/service_timer.h"

#include <set>
#include <vector>

#include "yon/base/located_new.h"
#include "yon/mt/lock.h"
#include "yon/mt/rec_mutex.h"
#include "yon/mt/shared.h"
#include "yon/timer/timerManager.h"

namespace yon {

/// Lives as long as its timer is set or somebody has a handle. Its mutex may be held while timers are set; the list's
/// may not, and no callback takes either while it calls.
class ServiceTimer::Impl : public Shared, public ITimerObject, private noncopyable {
public:
    Impl(ulong interval, void (*call)(void *), void * arg) noexcept : interval_(interval), call_(call), arg_(arg) {}

    static std::vector<Handle<Impl>> started() {
        Lock const lock(listMutex);
        return list != nullptr ? std::vector<Handle<Impl>>(list->begin(), list->end()) : std::vector<Handle<Impl>>();
    }

    void start() {
        {
            Lock const lock(listMutex);
            if (list == nullptr) list = new std::set<Handle<Impl>>;
            list->insert(this);
        }
        {
            Lock const lock(mutex_);
            started_ = true;
        }
        arm();
    }

    void arm() {
        Lock const lock(mutex_);
        if (!started_ || !id_.empty()) return;
        // The queue has a reference until it releases the timer.
        self_ = this;
        if (!TimerManager::instance()->setTimer(id_, 0, interval_, this, 0, nullptr)) self_ = nullptr;
    }

    void stop() {
        Handle<Impl> const self = this;
        {
            Lock const lock(listMutex);
            if (list != nullptr) list->erase(self);
        }
        TimerId last;
        {
            Lock const lock(mutex_);
            started_ = false;
            last = id_;
        }
        if (!last.empty()) TimerManager::instance()->killTimerAndWait(last);
    }

    bool armed() const {
        Lock const lock(mutex_);
        return !id_.empty();
    }

    void onTimeout(ulong, ulong, ulong, void *) override { call_(arg_); }
    void onRelease(ulong, ulong, ulong, void *) override {
        Handle<Impl> self;
        Lock const lock(mutex_);
        self.swap(self_);
        id_.reset();
    }

private:
    static constinit RecMutex listMutex;
    static constinit std::set<Handle<Impl>> * list;  ///< never deleted: services outlast main

    ulong const interval_;
    void (*const call_)(void *);
    void * const arg_;
    RecMutex mutex_;
    bool started_ = false;
    TimerId id_;
    Handle<Impl> self_;
};

constinit RecMutex ServiceTimer::Impl::listMutex;
constinit std::set<Handle<ServiceTimer::Impl>> * ServiceTimer::Impl::list = nullptr;

ServiceTimer::ServiceTimer(ulong interval, void (*call)(void *), void * arg)
    : impl_(YON_NEW(Impl)(interval, call, arg)) {}

ServiceTimer::~ServiceTimer() { stop(); }

void ServiceTimer::start() { impl_->start(); }

void ServiceTimer::stop() { impl_->stop(); }

bool ServiceTimer::armed() const { return impl_->armed(); }

void ServiceTimer::armAll() {
    for (Handle<Impl> const & timer : Impl::started()) timer->arm();
}

}  // namespace yon
