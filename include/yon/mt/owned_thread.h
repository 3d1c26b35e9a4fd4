// `OwnedThread<T>`: a thread whose hooks are members of its owner.
//
//     thread = YON_NEW(yon::OwnedThread<Server>)(this, "server");
//     thread->work_ = &Server::accept;
//     thread->start();
#pragma once

#include "yon/mt/simple_thread.h"

namespace yon {

/// Runs members of its owner in the place of the hooks of `SimpleThread`. The slots are filled before the start; an
/// empty slot leaves the hook as it is. When the owner is gone, or is no `T`, filled slots do nothing, and those for
/// birth and wait return true. The owner outlives the thread or stops it.
template <class T>
class OwnedThread : public SimpleThread {
public:
    OwnedThread(ThreadOwner * owner, char const * name) : SimpleThread(owner, name) {}

    bool (T::*birth_)() = nullptr;
    bool (T::*wait_)() = nullptr;
    void (T::*work_)() = nullptr;
    void (T::*death_)() = nullptr;
    void (T::*stop_)() = nullptr;
    void (T::*run_)() = nullptr;

    bool onBirth() override { return birth_ == nullptr ? SimpleThread::onBirth() : ask(birth_); }
    bool onWait() override { return wait_ == nullptr ? SimpleThread::onWait() : ask(wait_); }
    void onWork() override { work_ == nullptr ? SimpleThread::onWork() : call(work_); }
    void onDeath() override { death_ == nullptr ? SimpleThread::onDeath() : call(death_); }
    void onStop() override { stop_ == nullptr ? SimpleThread::onStop() : call(stop_); }
    void run() override { run_ == nullptr ? SimpleThread::run() : call(run_); }

private:
    bool ask(bool (T::*hook)()) {
        T * const target = dynamic_cast<T *>(owner());
        return target == nullptr || (target->*hook)();
    }
    void call(void (T::*hook)()) {
        if (T * const target = dynamic_cast<T *>(owner())) (target->*hook)();
    }
};

}  // namespace yon
