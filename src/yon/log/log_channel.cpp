#include "yon/log/log_channel.h"

#include "yon/log/emergency.h"

namespace yon {

/// All channels of the process. The lock comes before those of the channels.
struct ChannelList {
    static void add(LogChannel & c) noexcept {
        PatientGuard const guard(lock);
        if (!guard.owns()) return;
        c.next_ = first;
        if (first != nullptr) first->previous_ = &c;
        first = &c;
    }
    static void remove(LogChannel & c) noexcept {
        PatientGuard const guard(lock);
        if (!guard.owns()) return;
        (c.previous_ != nullptr ? c.previous_->next_ : first) = c.next_;
        if (c.next_ != nullptr) c.next_->previous_ = c.previous_;
    }
    /// REQUIRES: the lock is held.
    template <class Visit>
    static void forEach(Visit visit) noexcept {
        for (LogChannel * c = first; c != nullptr; c = c->next_) visit(*c);
    }
    template <class Visit>
    static void forEachFile(Visit visit) noexcept {
        forEach([&](LogChannel & c) {
            visit(c.main);
            visit(c.debug);
        });
    }

    static constinit detail::SystemLock lock;
    static constinit LogChannel * first;
};

constinit detail::SystemLock ChannelList::lock;
constinit LogChannel * ChannelList::first = nullptr;

namespace {

constexpr ulong flushInterval = 1000;  // ms

/// Writes everything out when the process ends or the library is unloaded. Lines that come later are written one by
/// one, by loggers that are still there.
struct AtEnd {
    constexpr AtEnd() noexcept = default;
    ~AtEnd() {
        logIsEnding.store(true, std::memory_order_relaxed);
        LogTrouble trouble;
        {
            PatientGuard const guard(ChannelList::lock);
            if (!guard.owns()) return;
            bool const alone = platform::othersAreGone();
            ChannelList::forEachFile([&](LogFile & f) {
                if (alone) f.takeOver();
                f.flush(trouble);
                f.close();
            });
        }
        trouble.tell();
        endSavingLines();
    }
} const atEnd;

}  // namespace

LogChannel::LogChannel(std::atomic<bool> const & useFile, std::atomic<bool> const & useDebugFile,
                       void (*onTimer)(void *), void * arg)
    : main(useFile, names), debug(useDebugFile, names), timer(flushInterval, onTimer, arg) {
    ChannelList::add(*this);
}

LogChannel::~LogChannel() {
    timer.stop();
    flush();
    ChannelList::remove(*this);
}

void flushUntimed() noexcept {
    LogTrouble trouble;
    {
        PatientGuard const guard(ChannelList::lock);
        if (!guard.owns()) return;
        ChannelList::forEach([&](LogChannel & c) {
            if (c.timer.armed()) return;
            c.main.flush(trouble);
            c.debug.flush(trouble);
        });
    }
    trouble.tell();
}

void lockChannels() noexcept {
    ChannelList::lock.lock();
    ChannelList::forEach([](LogChannel & c) {
        c.main.lock();
        c.debug.lock();
        c.names.lock();
    });
}

void unlockChannels() noexcept {
    ChannelList::forEach([](LogChannel & c) {
        c.names.unlock();
        c.debug.unlock();
        c.main.unlock();
    });
    ChannelList::lock.unlock();
}

void unlockChannelsOfChild() noexcept {
    ChannelList::forEachFile([](LogFile & f) { f.forget(); });
    unlockChannels();
}

void emergencyFlush() noexcept {
    if (!tryLockFor(ChannelList::lock, std::chrono::milliseconds(100))) return;
    bool left = false;
    ChannelList::forEachFile([&](LogFile & f) { left |= !f.writeRaw(LogFile::Raw::locked); });
    if (left) ChannelList::forEachFile([](LogFile & f) { f.writeRaw(LogFile::Raw::asItStands); });
    ChannelList::lock.unlock();
}

}  // namespace yon
