#include "yon/mt/threadUtil.h"

#include <exception>
#include <vector>

#include "yon/log/dumper_stl.h"
#include "yon/mt/lock.h"
#include "yon/platform/platform.h"

namespace yon {

namespace {

constexpr Time closeLimit = Time::seconds(10);

void record(diagnostics::Level level, istr tag, unsigned int line, char const * func, String const & text) {
    diagnostics::record(level, tag, {"src/yon/mt/threadUtil", line, func}, text);
}

}  // namespace

AsyncThreadManager::AsyncThreadManager(istr const & name) : name_(name) {}

AsyncThreadManager::AsyncThreadManager(AsyncThreadManager const & other)
    : ThreadOwner(other), name_(other.name_), closing_(other.closing_.load()) {}

AsyncThreadManager & AsyncThreadManager::operator=(AsyncThreadManager const & other) {
    name_ = other.name_;
    closing_ = other.closing_.load();
    return *this;
}

AsyncThreadManager::~AsyncThreadManager() {
    for (Handle<SimpleThread> const & thread : copy_i()) {
        if (thread->owner() == this) thread->detach();
    }
}

std::vector<Handle<SimpleThread>> AsyncThreadManager::copy_i() const {
    Lock const lock(threads_);
    return {threads_.begin(), threads_.end()};
}

void AsyncThreadManager::put(Handle<SimpleThread> thread) {
    if (!closing_) static_cast<void>(*thread);  // raises here, and not under the lock
    bool closed = false;
    {
        Lock const lock(threads_);
        closed = closing_;
        // Its end and this exclude each other: it is told to us, or known here.
        if (!closed && thread->adopt(this)) threads_.insert(thread);
    }
    if (!closed) return;
    record(diagnostics::Level::warning, "<WARNING>", 46, "yon::AsyncThreadManager::put",
           "closing " + name_ + " thread manager, not put new thread into it");
}

void AsyncThreadManager::onThreadExit(Thread * thread) {
    // Lives until the lock is left.
    Handle<SimpleThread> const ended(dynamic_cast<SimpleThread *>(thread));
    Lock const lock(threads_);
    threads_.erase(ended);
}

void AsyncThreadManager::close() {
    {
        Lock const lock(threads_);
        closing_ = true;
    }
    std::vector<Handle<SimpleThread>> const threads = copy_i();
    if (threads.empty()) return;
    constexpr char const * func = "yon::AsyncThreadManager::close";
    record(diagnostics::Level::info, "NOTICE", 28, func,
           std::to_string(threads.size()) + " " + name_ + " threads still living, try stop them...");
    std::exception_ptr const raised = stop_i(threads);
    std::size_t const remaining = copy_i().size();
    if (remaining > 0) {
        record(diagnostics::Level::info, "NOTICE", 34, func,
               "0 " + name_ + " threads stopped," + std::to_string(remaining) + " remaning");
    }
    {
        Lock const lock(threads_);
        threads_.clear();  // deletes none, since the copy holds them
    }
    if (raised) std::rethrow_exception(raised);
}

/// What a stop hook raises keeps no other thread from being stopped.
std::exception_ptr AsyncThreadManager::stop_i(std::vector<Handle<SimpleThread>> const & threads) {
    std::exception_ptr raised;
    for (Handle<SimpleThread> const & thread : threads) {
        try {
            thread->onStop_i();
        } catch (...) {
            if (!raised) raised = std::current_exception();
        }
    }
    Time const begin(platform::monotonicMicroseconds());
    for (Handle<SimpleThread> const & thread : threads) {
        Time const left = begin + closeLimit - Time(platform::monotonicMicroseconds());
        if (thread->started()) thread->join_i(std::max(left, Time::milliSeconds(10)), closeLimit);
    }
    return raised;
}

dumper & AsyncThreadManager::dump(dumper & d) const {
    d.push("yon::AsyncThreadManager", "@");
    d.field("name_", name_).field("closing_", closing_.load()).indent();
    {
        Lock const lock(threads_);
        detail::dumpRange(d, "yon::mt::set", threads_, [&d](Handle<SimpleThread> const & t) { d << *t; });
    }
    d.endline().pop();
    return d;
}

}  // namespace yon
