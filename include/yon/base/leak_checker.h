// `MemLeakChecker`: the registry of live located allocations.
#pragma once

#include <atomic>
#include <cstddef>
#include <iosfwd>
#include <new>
#include <utility>
#include <vector>

#include "yon/base/config.h"
#include "yon/base/types.h"

namespace yon {

class dumper;

/// What the registry knows of one allocation, or of all that came from one place.
struct YON_API MLC_Entry {
    char const * file;
    unsigned int line;
    char const * func;
    std::size_t count;  ///< live allocations
    std::size_t bytes;  ///< their size, 0 where it is not known

    dumper & dump(dumper & d) const;
};

/// Registers every located allocation with file, line and function (literals), and reports what is live. Off until
/// switched on; then one sharded lock an entry. Callable from any thread at any time; nothing in here allocates
/// through itself, raises or logs. Blocks allocated while it was off are unknown to it and ignored when they are
/// released.
class YON_API MemLeakChecker {
public:
    static void enable(bool on) noexcept { on_.store(on, std::memory_order_relaxed); }
    static bool enabled() noexcept { return on_.load(std::memory_order_relaxed); }

    /// Registers a block; null is ignored. A known address is replaced and counted in `replaced()`.
    static void push(void const * block, char const * file, unsigned int line, char const * func,
                     std::size_t bytes = 0) noexcept {
        if (enabled() && block != nullptr) push_i(block, file, line, func, bytes);
    }
    /// Forgets a block. An unknown address is ignored.
    static void pop(void const * block) noexcept {
        if (used_.load(std::memory_order_relaxed) && block != nullptr) pop_i(block);
    }

    /// Live blocks and their bytes.
    static std::size_t count() noexcept;
    static std::size_t bytes() noexcept;
    /// How often a known address was registered again.
    static std::size_t replaced() noexcept;
    /// Forgets everything.
    static void clear() noexcept;
    /// Calls `visit(entry)` for every place with live blocks, grouped by file, line and function, most bytes first.
    template <class Visit>
    static void forEach(Visit && visit) {
        visitGroups([](void * v, MLC_Entry const & e) { (*static_cast<Visit *>(v))(e); }, &visit);
    }
    /// What `forEach` visits.
    static std::vector<MLC_Entry> snapshot();
    /// The places where more is live than in an earlier snapshot, with the differences: the most additional bytes
    /// first. A count or size that did not grow is 0.
    static std::vector<MLC_Entry> since(std::vector<MLC_Entry> const & before);
    /// Writes one line for each place ("file:line func: N blocks, B bytes"), most bytes first, and a total.
    static std::ostream & report(std::ostream & os);
    /// The switch, the totals and the places.
    static dumper & dump(dumper & d);

private:
    static void push_i(void const * block, char const * file, unsigned int line, char const * func,
                       std::size_t bytes) noexcept;
    static void pop_i(void const * block) noexcept;
    static void visitGroups(void (*visit)(void *, MLC_Entry const &), void * arg);

    static std::atomic<bool> on_;
    static std::atomic<bool> used_;
};

}  // namespace yon

/// Located allocation: allocates like the plain form; the location is consumed by the caller, who registers the
/// block.
YON_API void * operator new(std::size_t size, char const * file, unsigned int line, char const * func);
YON_API void operator delete(void * p, char const * file, unsigned int line, char const * func) noexcept;
