// `UnitOfWork`: the skeleton of a program or of a part of one. `UowMain`: the unit that stands for the program.
//
//     class Server : public yon::UowMain {
//     public:
//         using UowMain::UowMain;
//         void on_loop() override { serveOne(); }
//     };
//
//     int main(int argc, char ** argv) {
//         Server server(argc, argv);
//         server.catchSignals();
//         return server.start();
//     }
#pragma once

#include <atomic>
#include <list>
#include <vector>

#include "yon/base/config.h"
#include "yon/base/string.h"
#include "yon/base/time.h"
#include "yon/util/cmdline.h"

namespace yon {

/// A named piece of work: an init hook, a loop hook that is called for as long as the unit runs, and a fini hook.
/// Units form a tree; a unit owns its children. `start` and the hooks run on the caller's thread; `stop`, `stopAll`,
/// `running` and `exitCode` may be called from any thread, everything else from one at a time.
class YON_API UnitOfWork {
public:
    /// The parent, if there is one, must outlive the unit; `addChild` sets it as well.
    explicit UnitOfWork(char const * name, UnitOfWork * parent = nullptr);
    UnitOfWork(UnitOfWork const &) = delete;
    UnitOfWork & operator=(UnitOfWork const &) = delete;
    /// Deletes the children in their order. Raises `NullPointerException` for a null among them, unless an exception
    /// is under way.
    virtual ~UnitOfWork() noexcept(false);

    /// Runs the unit: `on_init`, `on_loop` until somebody calls `stop`, `on_fini`. Returns the exit code. What
    /// `on_loop` raises of the library's or the standard family is logged, and the loop goes on; anything else, and
    /// what the other two raise, passes out, and the unit is not running then.
    int start();
    /// Ends the loop: the call under way finishes, no other follows.
    void stop(int code = 0) noexcept;
    /// Stops this unit, its parent, and so on up to the root.
    void stopAll(int code = 0) noexcept;

    bool running() const noexcept { return running_.load(std::memory_order_acquire); }
    int exitCode() const noexcept { return exitCode_.load(std::memory_order_acquire); }
    UnitOfWork * parent() const noexcept { return parent_; }
    UnitOfWork * root() noexcept;
    String const & name() const noexcept { return name_; }
    CmdLine & cmdline() noexcept { return cmdline_; }
    CmdLine const & cmdline() const noexcept { return cmdline_; }
    std::vector<String> const & args() const noexcept { return cmdline_.args(); }
    /// The names from the root down to this unit, joined by "/".
    String path() const;

    /// Takes a unit allocated by YON_NEW or `new` as the last child; it belongs to this unit from now on. Raises
    /// `NullPointerException` for null, `InvalidDataException` for a unit that is there already or is an ancestor.
    UnitOfWork & addChild(UnitOfWork * child);
    std::list<UnitOfWork *> const & children() const noexcept { return children_; }

    /// After a failed call of `on_loop` the loop waits, `first` at first and twice as long after each further failure
    /// in a row, at most `most`, and is over after `limit` failures in a row (0: never), with exit code 1 if there is
    /// none. Off at first. `stop` ends the waiting.
    UnitOfWork & onFailure(Time first, Time most, unsigned limit) noexcept;

    virtual void on_init() {}
    /// Without a loop of its own a unit is done at once.
    virtual void on_loop() { stop(exitCode()); }
    virtual void on_fini() {}
    /// A command for the unit; what it means is the unit's business.
    virtual void run(String const & /*command*/) {}
    /// The configuration has been read again (`UowMain::catchSignals`). Called by the loop, between two calls of
    /// `on_loop`, under the same rules.
    virtual void on_reload() {}

protected:
    /// Sets what `start` will return, and goes on.
    void exitCode(int code) noexcept { exitCode_.store(code, std::memory_order_release); }
    std::list<UnitOfWork *> & children() noexcept { return children_; }

private:
    friend class RunningUnits;

    void loop();
    void failed(unsigned & failures);

    std::atomic<bool> running_{false};
    std::atomic<bool> reload_{false};
    UnitOfWork * nextRunning_ = nullptr;  ///< in the list of those that run
    std::atomic<int> exitCode_{0};
    UnitOfWork * parent_;
    std::list<UnitOfWork *> children_;
    String name_;
    CmdLine cmdline_;
    Time firstWait_;
    Time longestWait_;
    unsigned failureLimit_ = 0;
};

/// The unit that stands for the program, named "main". It is the process's main unit from its construction until it
/// is destroyed or another one takes its place. Its loop runs the children, one after the other, and ends with the
/// first exit code of theirs that is not 0; with 1 when one of them lets an exception out, which is logged.
class YON_API UowMain : public UnitOfWork {
public:
    UowMain(int argc, char ** argv);
    ~UowMain() noexcept(false) override;

    void on_init() override {}
    void on_loop() override;
    void on_fini() override {}

    // Reads the arguments one by one.
    unsigned long argCount() const noexcept { return static_cast<unsigned long>(args().size()); }
    /// How many are still to be read.
    unsigned long argLeft() const noexcept { return argCount() - next_; }
    /// Raises `OutOfRangeException` beyond the last one.
    String const & argAt(unsigned long i) const;
    /// The one read last; empty before the first.
    String const & argCurrent() const noexcept { return current_; }
    /// Reads the next one. Raises `OutOfRangeException` that names the last argument when there is none.
    String const & argNext();

    /// From now on an interrupt or a request to end (Ctrl-C, SIGTERM, a closed console) stops every unit that runs or
    /// is started later; a second one ends the process with status 1 unless it is gone within `limit`. A hang-up lets
    /// the loggers read their configuration again and calls `on_reload` of every unit that runs. To be called before
    /// any thread is started: signals are taken by one thread of their own. Raises `ThreadSyscallException` if that
    /// cannot be had.
    void catchSignals(Time limit = Time::seconds(10));

private:
    String current_;
    unsigned long next_ = 0;
};

/// Where the process's main unit is kept. Callable from any thread.
class YON_API main_uow {
public:
    static main_uow & instance() noexcept;
    UnitOfWork * get() const noexcept { return unit_.load(std::memory_order_acquire); }
    void set(UnitOfWork * unit) noexcept { unit_.store(unit, std::memory_order_release); }
    /// Empties the slot if this unit is in it.
    void clear(UnitOfWork * unit) noexcept { unit_.compare_exchange_strong(unit, nullptr); }

private:
    std::atomic<UnitOfWork *> unit_{nullptr};
};

/// The main unit. Raises `NullPointerException`, after a record of it, when there is none.
YON_API UnitOfWork & app();

}  // namespace yon
