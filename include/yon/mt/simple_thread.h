// `SimpleThread`: a thread with a fixed life cycle.
//
//     class Reader : public yon::SimpleThread {
//     public:
//         Reader() : SimpleThread(nullptr, "reader") {}
//
//     private:
//         bool onWait() override { return wait(yon::Time::seconds(1)); }
//         void onWork() override { … }
//     };
//
//     yon::Handle<Reader> reader = YON_NEW(Reader)();
//     reader->start();
//     …
//     reader->stop();
#pragma once

#include "yon/mt/monitor.h"
#include "yon/mt/thread.h"
#include "yon/mt/thread_info.h"
#include "yon/mt/thread_owner.h"

namespace yon {

/// Runs `onBirth` once; while it is living, `onWait` and, if that was true, `onWork`; then `onDeath`. When `onBirth`
/// returns false the thread ends at once. The hooks run on the thread, `onStop` on the one that stops it. What a hook
/// raises is recorded and ends this thread only. Everything else may be called from any thread. Its begin and end are
/// recorded.
class YON_API SimpleThread : public Thread {
public:
    /// The owner, which may be null, is told when the thread ends by itself. It must live until the thread has ended,
    /// or take itself back with `detach`.
    SimpleThread(ThreadOwner * owner, char const * name);
    ~SimpleThread() override;

    /// Asks the thread to end and waits for it. The thread itself does not wait.
    void stop();
    /// Waits no longer than the limit, at least 10 ms; whether the thread has ended. When it has not, it goes on
    /// without its owner.
    bool stop(Time limit);

    /// Whether the thread is to go on.
    bool living() const noexcept { return living_.load(std::memory_order_acquire); }
    /// `false` is `livingEnd()`; `true` raises `Exception`.
    SimpleThread & living(bool alive);
    /// Asks the thread to end: wakes it from `wait` and calls `onStop`.
    void livingEnd();
    /// Whether somebody has called `stop`.
    bool activeStopping() const noexcept { return activeStopping_.load(std::memory_order_acquire); }

    /// The name, normalised; the system shows its beginning.
    String const & name() const noexcept { return name_; }
    /// The name and, once the thread runs, its identity text.
    String const & fullname() const noexcept { return *fullnameNow_.load(std::memory_order_acquire); }

    ThreadOwner * owner() const noexcept;
    /// Sets the owner. The one before is not called any more once this has returned; so an owner must not call it
    /// under a lock that its own `onThreadExit` takes.
    SimpleThread & owner(ThreadOwner * owner) noexcept;
    /// Takes the owner away.
    void detach() noexcept { owner(nullptr); }

    /// Wait for `notify`; return at once when the thread is not living any more, and when that ends. The second
    /// returns false when the limit has passed. A notification that comes when nobody waits is lost.
    void wait() const;
    bool wait(Time const & limit) const;
    void notify();

    /// A copy of what is known of this thread, with the time of the call. Raises `ThreadNotStartedException`.
    ThreadInfo info() const;
    /// Of the calling thread, whoever has started it: its own data, brought up to date to the tick of the system's
    /// clock and valid until the thread ends. A few nanoseconds, without a lock.
    static ThreadInfo const & current();
    /// "{process.thread}". Raises `ThreadNotStartedException`.
    String const & threadIdString() const;
    /// The present time, and its text.
    Time currDateTime() const;
    String currDateTimeString() const;
    /// Makes the factory forget all threads; they come back with their next look-up.
    static void destroyThreadFactory();

    virtual dumper & dump(dumper & d) const;

    // The hooks.

    /// The whole loop.
    virtual void run();
    virtual bool onBirth() { return true; }
    virtual bool onWait() { return true; }
    /// Calls `onLoop` and ends the life of the thread when that returns false.
    virtual void onWork();
    virtual bool onLoop() { return true; }
    virtual void onDeath() {}
    virtual void onStop() {}

protected:
    /// Wait for the end of the thread, as the two `stop` do.
    void join();
    bool join(Time limit);

private:
    friend class AsyncThreadManager;

    void run_i() override;
    bool onBirth_i();
    bool onWait_i();
    void onWork_i();
    void onDeath_i();
    void onStop_i();
    void on_thread_exit();

    bool isCaller() const noexcept;
    Handle<SimpleThread> held() noexcept;
    void begin_i();
    void end_i() noexcept;
    void endLife();
    bool join_i(Time limit, Time told);
    bool adopt(ThreadOwner * newOwner);
    String const & identity_i() const;

    RecMutex ownerMutex_;
    ThreadOwner * owner_;
    bool ended_ = false;  ///< has told its owner, or had none to tell
    std::atomic<bool> callingOwner_{false};
    Monitor monitor_;
    String const name_;
    String fullname_;  ///< set before `fullnameNow_` points to it
    std::atomic<String const *> fullnameNow_;
    mutable String identity_;  ///< under `ownerMutex_` until it is known
    mutable std::atomic<bool> identityKnown_{false};
    std::atomic<bool> living_{true};
    std::atomic<bool> activeStopping_{false};
};

}  // namespace yon
