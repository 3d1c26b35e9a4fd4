// A tour of the timers. docs/timers.md quotes what stands below.
#include <atomic>
#include <cstdio>
#include <iostream>

#include "yon/yon.h"

namespace {

/// Counts what comes, and lives until nothing more can come.
class Countdown : public yon::ITimerObject {
public:
    void onTimeout(yon::ulong, yon::ulong, yon::ulong userTimerId, void *) override {
        std::printf("timer %u fired\n", static_cast<unsigned>(userTimerId));
        ++fired;
    }
    void onRelease(yon::ulong, yon::ulong, yon::ulong userTimerId, void *) override {
        std::printf("timer %u is gone\n", static_cast<unsigned>(userTimerId));
        released = true;
    }
    yon::dumper & dump(yon::dumper & d) const override { return d.write(fired.load()).raw(" shots"); }

    std::atomic<int> fired{0};
    std::atomic<bool> released{false};
};

bool threeShots() {
    yon::TimerManager * const timers = yon::TimerManager::instance();
    timers->start();
    Countdown countdown;
    yon::TimerId id;
    if (!timers->setTimer(id, 7, 60, &countdown, 3, nullptr)) return false;
    while (!countdown.released) yon::sleep(10);
    return countdown.fired == 3;
}

bool endless() {
    yon::TimerManager * const timers = yon::TimerManager::instance();
    Countdown countdown;
    yon::TimerId id;
    timers->setTimer(id, 8, 100, &countdown, 0, nullptr);
    while (countdown.fired < 2) yon::sleep(10);
    timers->resetTimer(id, 60000, 0);
    for (yon::TimerInfo const & timer : timers->timers()) yon::dumper(std::cout, false) << timer << yon::nl;
    timers->killTimerAndWait(id);
    return countdown.released && !timers->killTimer(id);
}

class Session {
public:
    bool open() { return heartbeat_.setTimer(1, 50, 0); }
    int beats() const { return beats_; }

private:
    void beat(void *) { ++beats_; }

    std::atomic<int> beats_{0};
    yon::Timer_T<Session> heartbeat_{this, &Session::beat};  // last, so that it ends first
};

bool memberFunctions() {
    Session session;
    session.open();
    while (session.beats() < 2) yon::sleep(10);
    return true;
}

}  // namespace

int main() {
    bool const good = threeShots() && endless() && memberFunctions();
    yon::TimerManager::instance()->stop();
    return good ? 0 : 1;
}
