#include "yon/mt/thread.h"

#include <cxxabi.h>

#include <sstream>

#include "yon/base/throw.h"
#include "yon/mt/lock.h"
#include "yon/mt/threadexception.h"
#include "yon/mt/uncaught.h"
#include "yon/platform/locks.h"
#include "yon/platform/threads.h"

namespace yon {

namespace {

constexpr diagnostics::Location at(unsigned int line, char const * func) { return {"src/yon/mt/thread", line, func}; }

String currentExceptionText(char const * before) {
    std::ostringstream text;
    text << before;
    try {
        throw;
    } catch (Exception const & e) {
        text << e;
    } catch (ExceptionBase const & e) {
        text << e;
    } catch (std::exception const & e) {
        text << e;
    } catch (...) {
        text << "not of any known class";
    }
    return text.str();
}

}  // namespace

void detail::recordUncaught(diagnostics::Location const & where, char const * text) noexcept {
    try {
        diagnostics::record(diagnostics::Level::error, "<ERROR>", where, currentExceptionText(text));
    } catch (...) {
        // There is no memory for it.
    }
}

void detail::recordUncaught() noexcept {
    recordUncaught(at(232, "startHook"), "yon::Thread::run_i(): uncaught exception:");
}

// --- ThreadControl ---

ThreadControl::ThreadControl() : id_(ThreadId::current()) {
    if (void * const handle = platform::openThisThread()) {
        handle_ = detail::LocatedNew<HandleWrapper>{at(28, "yon::ThreadControl::ThreadControl")}(handle, true);
    }
}

ThreadControl::ThreadControl(ThreadControl const & other) {
    Lock const lock(other.mutex_);
    handle_ = other.handle_;
    id_ = other.id_;
}

ThreadControl & ThreadControl::operator=(ThreadControl const & other) {
    ThreadControl copy(other);
    Lock const lock(mutex_);
    handle_.swap(copy.handle_);
    id_ = copy.id_;
    return *this;
}

Handle<HandleWrapper> ThreadControl::handle() const {
    Lock const lock(mutex_);
    return handle_;
}

ThreadId ThreadControl::id() const {
    Lock const lock(mutex_);
    return id_;
}

void ThreadControl::join() const {
    Handle<HandleWrapper> const thread = handle();
    void * const handle = thread->handle();
    if (id() == ThreadId::current()) return;
    int const error = platform::joinThread(handle);
    if (error != platform::done) YON_THROW_AT(at(112, "yon::ThreadControl::join"), ThreadSyscallException, error);
}

bool ThreadControl::join(Time const & limit) const {
    Handle<HandleWrapper> const thread = handle();
    void * const handle = thread->handle();
    if (id() == ThreadId::current()) return true;
    int const error = platform::joinThread(handle, limit.toMicroSeconds());
    if (error == platform::timedOut) return false;
    if (error != platform::done) YON_THROW_AT(at(112, "yon::ThreadControl::join"), ThreadSyscallException, error);
    return true;
}

bool ThreadControl::isAlive() const {
    Handle<HandleWrapper> const thread = handle();
    return thread && platform::threadAlive(thread->handle());
}

void ThreadControl::sleep(Time const & time) noexcept { platform::pauseThread(time.toMicroSeconds()); }

void ThreadControl::yield() noexcept { platform::pauseThread(0); }

void sleep(unsigned long milliseconds) noexcept {
    constexpr auto most = static_cast<ulonglong>(Time::max().toMilliSeconds());
    platform::pauseThread(static_cast<longlong>(std::min<ulonglong>(milliseconds, most)) * 1000);
}

// --- Thread ---

Thread::~Thread() = default;

ThreadControl Thread::start(unsigned int stackSize) {
    bool const owned = __getRef() > 0;
    __incRef();
    try {
        ThreadControl control = start_i(stackSize);
        // The new thread's own reference may be gone already.
        __decRef();
        return control;
    } catch (...) {
        // An object that belonged to no handle before does not go with the last reference.
        owned ? __decRef() : __letGo();
        throw;
    }
}

ThreadControl Thread::start_i(unsigned int stackSize) {
    Lock lock(mutex_);
    if (started()) {
        lock.release();
        YON_THROW_AT(at(251, "yon::Thread::start"), ThreadStartedException);
    }
    __incRef();
    platform::CreatedThread const created = platform::createThread(startHook, this, stackSize);
    if (created.handle == nullptr) {
        lock.release();
        __decRef();
        YON_THROW_AT(at(274, "yon::Thread::start"), ThreadSyscallException, created.error);
    }
    publish(created.id);
    handle_ = YON_NEW(HandleWrapper)(created.handle, true);
    return ThreadControl(handle_, created.id);
}

void Thread::startHook(void * thread) {
    Handle<Thread> const self(static_cast<Thread *>(thread));
    self->__decRef();  // of the reference that `start` has taken
    self->publish(ThreadId::current());
    try {
        self->run_i();
    } catch (abi::__forced_unwind const &) {
        throw;  // the system ends the thread
    } catch (...) {
        detail::recordUncaught();
    }
}

// By the thread itself and by the one that starts it: whoever comes first.
void Thread::publish(ThreadId id) noexcept {
    id_.store(id, std::memory_order_relaxed);
    started_.store(true, std::memory_order_release);
}

ThreadId Thread::idFor(unsigned int line, char const * func) const {
    if (!started()) YON_THROW_AT(at(line, func), ThreadNotStartedException);
    return id_.load(std::memory_order_relaxed);
}

ThreadId Thread::id() const { return idFor(200, "yon::Thread::id"); }

ThreadControl Thread::getThreadControl() const {
    ThreadId const id = idFor(288, "yon::Thread::getThreadControl");
    Lock const lock(mutex_);
    return ThreadControl(handle_, id);
}

bool Thread::operator==(Thread const & other) const {
    constexpr char const * func = "yon::Thread::operator`=='";
    return idFor(307, func) == other.idFor(307, func);
}

bool Thread::operator<(Thread const & other) const {
    constexpr char const * func = "yon::Thread::operator`<'";
    return idFor(337, func) < other.idFor(337, func);
}

}  // namespace yon
