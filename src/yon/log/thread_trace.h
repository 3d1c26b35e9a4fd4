// `ThreadTrace`: the traced calls of one thread.
#pragma once

#include "yon/base/call_stack.h"
#include "yon/log/trace_mirror.h"

namespace yon {

/// The calling thread's traced calls. The outer ones stand in its `CallStack` in the map of all threads, the `extra_`
/// innermost ones in the mirror only, so that entering and leaving functions costs neither an allocation nor a lock.
/// Whoever gets a reference to the stack sees every call in it from then on.
class ThreadTrace {
public:
    explicit ThreadTrace(TraceMirror & mirror) noexcept : mirror_(mirror) {}
    ThreadTrace(ThreadTrace const &) = delete;
    ThreadTrace & operator=(ThreadTrace const &) = delete;
    ~ThreadTrace();

    /// Null without memory.
    static ThreadTrace * current() noexcept;
    /// The same, but null if there was no call yet.
    static ThreadTrace * existing() noexcept;

    void push(diagnostics::Location const & where);
    /// Nothing when there is no call.
    void pop() noexcept;
    std::size_t depth() const noexcept;
    /// The function of the innermost call. REQUIRES: `depth() != 0`.
    char const * topFunction() const noexcept;

    /// The stack with all calls, for use within the library.
    CallStack & stack();
    /// The same for others, who may keep the reference.
    CallStack & sharedStack();
    /// Removes it from the map.
    void remove() noexcept;

    TraceMirror & mirror() noexcept { return mirror_; }

    /// The stack of the calling thread with all calls, also without memory for the rest of this.
    static CallStack & currentStack();
    /// Deletes the stacks of all threads.
    static void destroyAll();

private:
    static CallStack & inMap();
    void renew() noexcept;
    std::size_t settled() const noexcept { return stack_ != nullptr ? stack_->container().size() : 0; }
    void mirrorAll() noexcept;

    TraceMirror & mirror_;
    CallStack * stack_ = nullptr;
    unsigned generation_ = 0;
    unsigned extra_ = 0;
    bool shared_ = false;
    /// How often to look for a name yet: a thread is traced before its name is known, and most have none.
    int nameTries_ = 4;
};

}  // namespace yon
