#include "yon/log/console.h"

#include <atomic>
#include <mutex>
#include <new>
#include <ostream>
#include <utility>

#include "yon/base/std_streams.h"
#include "yon/log/patient_guard.h"
#include "yon/mt/lock.h"
#include "yon/mt/thread_control.h"
#include "yon/platform/console_input.h"
#include "yon/platform/debugger.h"
#include "yon/platform/fork.h"
#include "yon/timer/service_timer.h"
#include "yon/timer/timerManager.h"
#include "yon/util/singleton_T.h"

namespace yon {

namespace {

constexpr ulong flushInterval = 100;
constexpr std::size_t mostPending = 1024 * 1024;

void writeOut(std::string_view text) {
    std::streambuf * const out = std_out().rdbuf();
    if (out == nullptr) return;
    out->sputn(text.data(), static_cast<std::streamsize>(text.size()));
    out->pubsync();
}

}  // namespace

/// Three locks, none taken under a later one: for reading, for writing, and for what is shared with those who print,
/// which nobody holds for longer than a copy.
class ConsoleImpl {
public:
    static ConsoleImpl & instance() {
        return *Singleton_T<ConsoleImpl>::instance("src/yon/log/console", __LINE__, "yon::ConsoleImpl::instance");
    }
    /// Null while there is none.
    static ConsoleImpl * existing() noexcept { return existing_.load(std::memory_order_acquire); }

    ConsoleImpl() { existing_.store(this, std::memory_order_release); }
    ConsoleImpl(ConsoleImpl const &) = delete;
    ConsoleImpl & operator=(ConsoleImpl const &) = delete;
    ~ConsoleImpl() {
        if (isOpen()) close();
        existing_.store(nullptr, std::memory_order_release);
    }

    void open();
    void close();
    void flush();
    void print(istr text, istr end);
    bool readline(String & line, istr prompt);
    bool atEnd() const noexcept { return atEnd_.load(std::memory_order_relaxed); }
    bool isOpen() const noexcept { return open_.load(std::memory_order_relaxed); }

    // Around a fork, the one lock that is held by no blocked thread.
    void lock() noexcept { lock_.lock(); }
    void unlock() noexcept { lock_.unlock(); }
    void becomeChild() noexcept;

private:
    bool promptIsShown(istr prompt);
    void showPrompt();
    bool takeLine(String & line);

    static constinit std::atomic<ConsoleImpl *> existing_;

    detail::SystemLock lock_;
    std::string pending_;
    String prompt_;
    bool promptShown_ = false;  ///< on the screen, and no line was read since

    detail::SystemLock writing_;
    std::string written_;  ///< the other one of two buffers

    detail::SystemLock reading_;
    std::string partial_;  ///< a line whose end has not come yet
    std::atomic<bool> atEnd_{false};

    std::atomic<bool> open_{false};
    ServiceTimer timer_{flushInterval, [](void * self) { static_cast<ConsoleImpl *>(self)->flush(); }, this};
};

constinit std::atomic<ConsoleImpl *> ConsoleImpl::existing_{nullptr};

void ConsoleImpl::open() {
    flush();
    TimerManager::instance()->start();
    timer_.start();
    bool const armed = timer_.armed();
    if (!armed) timer_.stop();
    open_.store(armed);
}

void ConsoleImpl::close() {
    timer_.stop();
    open_.store(false);
    flush();
}

void ConsoleImpl::print(istr text, istr end) {
    if (platform::debuggerListens()) platform::tellDebugger((std::string(text) += std::string_view(end)).c_str());
    std::size_t size = 0;
    {
        PatientGuard const guard(lock_);
        if (!guard.owns()) return;
        pending_ += std::string_view(text);
        pending_ += std::string_view(end);
        size = pending_.size();
    }
    if (size > mostPending) flush();
}

void ConsoleImpl::flush() {
    PatientGuard const writing(writing_);
    if (!writing.owns()) return;
    bool belowPrompt = false;
    {
        PatientGuard const guard(lock_);
        if (!guard.owns() || pending_.empty()) return;
        written_.swap(pending_);
        belowPrompt = std::exchange(promptShown_, false);
    }
    if (belowPrompt) writeOut("\n");
    writeOut(written_);
    written_.clear();
    if (written_.capacity() > mostPending) written_ = std::string();
}

bool ConsoleImpl::readline(String & line, istr prompt) {
    if (!promptIsShown(prompt)) showPrompt();
    {
        TryLock const reading(reading_);
        if (reading.acquired() && takeLine(line)) {
            std::lock_guard const guard(lock_);
            promptShown_ = false;
            return true;
        }
    }
    sleep(flushInterval);
    return false;
}

bool ConsoleImpl::promptIsShown(istr prompt) {
    std::lock_guard const guard(lock_);
    if (prompt_ != prompt) prompt_ = prompt;
    return promptShown_;
}

void ConsoleImpl::showPrompt() {
    std::lock_guard const writing(writing_);
    String shown;
    {
        std::lock_guard const guard(lock_);
        if (std::exchange(promptShown_, true)) return;
        shown = prompt_;
    }
    if (!shown.empty()) writeOut(shown);
}

/// Takes what has come so far of a line, and the line when it is complete. The end of the input ends a line, too.
bool ConsoleImpl::takeLine(String & line) {
    using Traits = std::streambuf::traits_type;
    std::streambuf * const in = std_in().rdbuf();
    while (in != nullptr && (in->in_avail() > 0 || platform::inputReady())) {
        Traits::int_type const c = in->sbumpc();
        bool const ended = Traits::eq_int_type(c, Traits::eof());
        atEnd_.store(ended, std::memory_order_relaxed);
        if (ended && partial_.empty()) return false;
        if (ended || c == '\n') {
            line = String(std::move(partial_));
            partial_.clear();
            return true;
        }
        partial_ += Traits::to_char_type(c);
    }
    return false;
}

/// What is pending is printed by the parent. Locks that its other threads held are held by nobody now, and what they
/// guard is in the middle of something.
void ConsoleImpl::becomeChild() noexcept {
    pending_.clear();
    new (&written_) std::string;
    new (&partial_) std::string;
    new (&writing_) detail::SystemLock;
    new (&reading_) detail::SystemLock;
    unlock();
}

namespace {

/// The console that a fork has found.
constinit ConsoleImpl * held = nullptr;

void beforeFork() noexcept {
    held = ConsoleImpl::existing();
    if (held != nullptr) held->lock();
}
void inParent() noexcept {
    if (held != nullptr) held->unlock();
}
void inChild() noexcept {
    if (held != nullptr) held->becomeChild();
}
[[maybe_unused]] bool const survivesFork =
    (platform::onFork(platform::ForkLayer::log, beforeFork, inParent, inChild), true);

/// Lets nothing out.
template <class Call>
void quietly(Call call) noexcept {
    try {
        call();
    } catch (...) {
    }
}

/// Writes what is pending when the process ends or the library goes.
struct FlushAtExit {
    ~FlushAtExit() {
        logIsEnding.store(true, std::memory_order_relaxed);
        ConsoleImpl * const c = ConsoleImpl::existing();
        if (c != nullptr && c->isOpen()) quietly([c] { c->flush(); });
    }
};
constinit FlushAtExit flushAtExit;

}  // namespace

void console::create() noexcept {
    quietly([] { ConsoleImpl::instance(); });
}

void console::destroy() noexcept { Singleton_T<ConsoleImpl>::destroy(); }

void console::open() noexcept {
    quietly([] { ConsoleImpl::instance().open(); });
}

void console::close() noexcept {
    quietly([] { ConsoleImpl::instance().close(); });
}

void console::flush() noexcept {
    quietly([] { ConsoleImpl::instance().flush(); });
}

void console::print(istr const & text) noexcept {
    quietly([&] { ConsoleImpl::instance().print(text, nullptr); });
}

void console::println(istr const & text) noexcept {
    quietly([&] { ConsoleImpl::instance().print(text, "\n"); });
}

void console::print(char const * text, ulong length) noexcept { print(istr(text, length)); }
void console::println(char const * text, ulong length) noexcept { println(istr(text, length)); }

bool console::readline(String & line, char const * prompt) noexcept {
    bool taken = false;
    quietly([&] { taken = ConsoleImpl::instance().readline(line, prompt); });
    return taken;
}

bool console::atEnd() noexcept {
    ConsoleImpl const * const c = ConsoleImpl::existing();
    return c != nullptr && c->atEnd();
}

}  // namespace yon
