#include "yon/platform/alternate_stack.h"

#include <signal.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>

namespace yon::platform {

namespace {

/// Enough for handlers of others that are called from ours; what is not touched costs no memory.
constexpr std::size_t wanted = std::size_t{128} << 10;

std::size_t pageSize() noexcept { return static_cast<std::size_t>(::sysconf(_SC_PAGESIZE)); }

std::size_t usableSize() noexcept {
    // The state of a processor's large registers is saved on this stack, too.
    long const least = ::sysconf(_SC_MINSIGSTKSZ);
    std::size_t const size = std::max(wanted, 4 * static_cast<std::size_t>(std::max(least, 0L)));
    return (size + pageSize() - 1) / pageSize() * pageSize();
}

}  // namespace

AlternateStack::AlternateStack() noexcept {
    stack_t stack;
    if (::sigaltstack(nullptr, &stack) != 0 || (stack.ss_flags & SS_DISABLE) == 0) return;
    std::size_t const guard = pageSize();
    std::size_t const size = guard + usableSize();
    void * const memory = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) return;
    stack = {};
    stack.ss_sp = static_cast<char *>(memory) + guard;
    stack.ss_size = size - guard;
    if (::mprotect(memory, guard, PROT_NONE) != 0 || ::sigaltstack(&stack, nullptr) != 0) {
        ::munmap(memory, size);
        return;
    }
    memory_ = memory;
    size_ = size;
}

AlternateStack::~AlternateStack() {
    if (memory_ == nullptr) return;
    stack_t off = {};
    off.ss_flags = SS_DISABLE;
    // Fails within a handler that runs on it: then it stays.
    if (::sigaltstack(&off, nullptr) == 0) ::munmap(memory_, size_);
}

}  // namespace yon::platform
