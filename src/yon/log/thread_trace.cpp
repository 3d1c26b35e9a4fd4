#include "yon/log/thread_trace.h"

#include <algorithm>
#include <atomic>
#include <new>

#include "yon/log/log_thread.h"
#include "yon/mt/lock.h"
#include "yon/mt/map.h"
#include "yon/mt/thread_id.h"
#include "yon/platform/fork.h"
#include "yon/util/singleton_T.h"

namespace yon {

namespace {

using CallStacks = mt::map<ThreadId, CallStack>;

/// Counts how often all stacks were deleted, so that no thread uses its own one any more.
constinit std::atomic<unsigned> generation{0};

/// The map while there is one.
constinit std::atomic<CallStacks *> existingStacks{nullptr};

CallStacks & callStacks() {
    CallStacks * const stacks =
        Singleton_T<CallStacks>::instance("src/yon/log/log_tracer", __LINE__, "yon::g__tssCallStack");
    existingStacks.store(stacks, std::memory_order_release);
    return *stacks;
}

/// The map that a fork has found.
constinit CallStacks const * held = nullptr;

void lockStacks() noexcept {
    held = existingStacks.load(std::memory_order_acquire);
    if (held != nullptr) held->lock();
}
void unlockStacks() noexcept {
    if (held != nullptr) held->unlock();
}
void becomeChild() noexcept {
    unlockStacks();
    LogThread const * const thread = LogThread::existing();
    TraceMirror::keepOnly(thread != nullptr && thread->trace != nullptr ? &thread->trace->mirror() : nullptr);
}

[[maybe_unused]] bool const survivesFork =
    (platform::onFork(platform::ForkLayer::log, lockStacks, unlockStacks, becomeChild), true);

}  // namespace

ThreadTrace * ThreadTrace::existing() noexcept {
    LogThread * const thread = LogThread::existing();
    if (thread == nullptr || thread->trace == nullptr) return nullptr;
    ThreadTrace * const trace = thread->trace.get();
    if (trace->generation_ != generation.load(std::memory_order_acquire)) trace->renew();
    return trace;
}

ThreadTrace * ThreadTrace::current() noexcept {
    if (ThreadTrace * const trace = existing()) return trace;
    LogThread * const thread = LogThread::current();
    TraceMirror * const mirror = thread != nullptr ? TraceMirror::claim() : nullptr;
    if (mirror == nullptr) return nullptr;
    thread->trace.reset(new (std::nothrow) ThreadTrace(*mirror));
    if (thread->trace == nullptr) mirror->release();
    return existing();
}

ThreadTrace::~ThreadTrace() {
    if (generation_ == generation.load(std::memory_order_acquire)) remove();
    mirror_.release();
}

void ThreadTrace::renew() noexcept {
    generation_ = generation.load(std::memory_order_acquire);
    stack_ = nullptr;
    shared_ = false;
    extra_ = 0;
    mirror_.size(0);
}

std::size_t ThreadTrace::depth() const noexcept { return settled() + extra_; }

char const * ThreadTrace::topFunction() const noexcept {
    return extra_ != 0 ? mirror_.at(mirror_.size() - 1).func : stack_->container().top().func();
}

void ThreadTrace::push(diagnostics::Location const & where) {
    if (nameTries_ != 0) nameTries_ = mirror_.takeName() ? 0 : nameTries_ - 1;
    std::size_t const n = depth();
    bool const deep = n >= TraceMirror::capacity;
    if (deep || shared_) stack().container().push(Current(where));
    if (mirror_.size() != n) mirrorAll();
    if (!deep) mirror_.put(static_cast<unsigned>(n), where);
    if (!deep && !shared_) ++extra_;
    mirror_.size(static_cast<unsigned>(n) + 1);
}

void ThreadTrace::pop() noexcept {
    if (extra_ != 0) {
        --extra_;
    } else if (settled() != 0) {
        stack_->container().pop();
    }
    mirror_.size(static_cast<unsigned>(depth()));
}

/// Somebody changed the stack itself.
void ThreadTrace::mirrorAll() noexcept {
    if (stack_ == nullptr) return;
    unsigned i = 0;
    for (Current const & where : stack_->container()) {
        if (i == TraceMirror::capacity) break;
        mirror_.put(i++, {where.file(), where.line(), where.func()});
    }
}

CallStack & ThreadTrace::stack() {
    if (stack_ == nullptr) {
        stack_ = &inMap();
        // An ended thread with the same number may have left something.
        *stack_ = CallStack();
    }
    for (unsigned const n = mirror_.size(); extra_ != 0; --extra_) {
        stack_->container().push(Current(mirror_.at(n - extra_)));
    }
    return *stack_;
}

CallStack & ThreadTrace::sharedStack() {
    shared_ = true;
    return stack();
}

CallStack & ThreadTrace::currentStack() {
    ThreadTrace * const trace = current();
    return trace != nullptr ? trace->stack() : inMap();
}

CallStack & ThreadTrace::inMap() {
    CallStacks & stacks = callStacks();
    Lock const lock(stacks);
    return stacks[ThreadId::current()];
}

void ThreadTrace::remove() noexcept {
    if (stack_ != nullptr) {
        CallStacks & stacks = callStacks();
        Lock const lock(stacks);
        stacks.erase(ThreadId::current());
    }
    stack_ = nullptr;
    shared_ = false;
    extra_ = 0;
    mirror_.size(0);
}

void ThreadTrace::destroyAll() {
    generation.fetch_add(1, std::memory_order_acq_rel);
    existingStacks.store(nullptr, std::memory_order_release);
    Singleton_T<CallStacks>::destroy();
}

}  // namespace yon
