// A tour of threads and thread managers. docs/threads.md quotes the functions below.
#include <iostream>
#include <list>

#include "yon/yon.h"

using yon::Handle;
using yon::String;
using yon::Time;

namespace {

// Adds up what others give it.
class Adder : public yon::SimpleThread {
public:
    Adder() : SimpleThread(nullptr, "tour::adder") {}

    void add(int n) {
        {
            yon::Lock const lock(mutex_);
            numbers_.push_back(n);
        }
        notify();
    }
    int sum() const { return sum_; }

private:
    bool empty() const {
        yon::Lock const lock(mutex_);
        return numbers_.empty();
    }
    // A notification that nobody waits for is lost, so the wait has a limit.
    bool onWait() override { return !empty() || wait(Time::milliSeconds(20)); }
    void onWork() override { take(); }
    void onDeath() override { take(); }  // what came before the stop

    void take() {
        yon::Lock const lock(mutex_);
        for (; !numbers_.empty(); numbers_.pop_front()) sum_ += numbers_.front();
    }

    yon::RecMutex mutex_;
    std::list<int> numbers_;
    int sum_ = 0;
};

bool startAndStop() {
    Handle<Adder> const adder = YON_NEW(Adder)();
    adder->start();
    for (int n = 1; n <= 100; ++n) adder->add(n);
    bool const ended = adder->stop(Time::seconds(5));  // asks it to end, and waits
    std::cout << adder->name() << ": " << adder->sum() << '\n';
    return ended && adder->sum() == 5050 && adder->fullname() == adder->name() + adder->threadIdString();
}

bool whoAmI() {
    yon::ThreadInfo const & me = yon::SimpleThread::current();
    std::cout << (me.thread_ == nullptr ? "not started by the library" : me.thread_->name()) << '\n';
    return me.sThreadId_.front() == '<' && me.sCurrDateTime_ == me.currDateTime_.toDateTime();
}

// The hooks of its threads are members of the server.
class Server : public yon::ThreadOwner {
public:
    bool serve() {
        thread_ = YON_NEW(yon::OwnedThread<Server>)(this, "server");
        thread_->birth_ = &Server::open;
        thread_->work_ = &Server::answer;
        yon::ThreadControl const control = thread_->start();
        control.join();
        return !control.isAlive() && requests_ == 0 && ended_;
    }

private:
    bool open() { return ++requests_ == 1; }  // false would end the thread here
    void answer() {
        if (--requests_ == 0) thread_->livingEnd();
    }
    // Not called for threads that somebody has stopped.
    void onThreadExit(yon::Thread *) override { ended_ = true; }

    Handle<yon::OwnedThread<Server>> thread_;
    int requests_ = 0;
    bool ended_ = false;
};

// Raises something nobody catches.
class Faulty : public yon::SimpleThread {
public:
    Faulty() : SimpleThread(nullptr, "faulty") {}

private:
    void onWork() override { YON_THROW(yon::InvalidDataException, "a fault"); }
};

bool startAndForget() {
    yon::AsyncThreadManager manager("tour");
    Handle<yon::SimpleThread> const faulty = YON_NEW(Faulty)();
    manager.put(faulty);
    faulty->start().join();  // it is recorded, and ends this thread only
    Handle<yon::SimpleThread> const adder = YON_NEW(Adder)();
    manager.put(adder);
    adder->start();
    manager.close();  // at most 10 seconds for all of them
    return !adder->getThreadControl().isAlive() && faulty->owner() == &manager;
}

}  // namespace

int main() { return startAndStop() && whoAmI() && Server().serve() && startAndForget() ? 0 : 1; }
