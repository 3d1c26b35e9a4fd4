// Room in which a crash handler can run when a thread's own stack is used up.
#pragma once

#include <cstddef>

namespace yon::platform {

/// Gives the calling thread that room for as long as the object lives, unless the thread has some already. The first
/// local object of a thread's start routine; made and destroyed in one thread. Lets nothing out: without memory the
/// thread goes on without.
class AlternateStack {
public:
    AlternateStack() noexcept;
    ~AlternateStack();
    AlternateStack(AlternateStack const &) = delete;
    AlternateStack & operator=(AlternateStack const &) = delete;

private:
    void * memory_ = nullptr;
    std::size_t size_ = 0;
};

}  // namespace yon::platform
