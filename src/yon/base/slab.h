// Memory for the nodes and values of trees: per-thread free lists of small blocks.
#pragma once

#include <cstddef>
#include <new>

#include "yon/platform/threads.h"

// Under the memory sanitizers every block comes from the heap, so that they see its life.
#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define YON_SLAB_PASSES_THROUGH true
#endif
#elif defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define YON_SLAB_PASSES_THROUGH true
#endif
#if !defined(YON_SLAB_PASSES_THROUGH)
#define YON_SLAB_PASSES_THROUGH false
#endif

namespace yon {

/// Hands out blocks of up to `largest` bytes from free lists of the calling thread, without a lock; larger ones come
/// from the heap. Any thread may release a block. Full lists move between threads through a common depot, so that one
/// thread may build what another destroys. What a thread holds goes to the depot when it ends. Memory is kept for
/// later trees and not given back to the system.
class Slab {
public:
    static constexpr std::size_t largest = 64;

    /// The calling thread's lists. Fetch it once for a long piece of work. Raises `std::bad_alloc`.
    static Slab & local() {
        auto * const own = static_cast<Slab *>(platform::slot(platform::Slot::pool));
        return own != nullptr ? *own : make();
    }

    void * allocate(std::size_t size) {
        if (size > largest || passThrough) return ::operator new(size);
        std::size_t const c = classOf(size);
        List & list = lists_[c];
        if (list.head == nullptr && !refill(c)) return carve(c);
        Block * const b = list.head;
        list.head = b->next;
        __builtin_prefetch(list.head, 1);
        --list.count;
        return b;
    }

    void release(void * p, std::size_t size) noexcept {
        if (size > largest || passThrough) return ::operator delete(p);
        std::size_t const c = classOf(size);
        List & list = lists_[c];
        Block * const b = ::new (p) Block{list.head};
        list.head = b;
        if (++list.count > magazine) overflow(c);
    }

private:
    struct Block {
        Block * next;
    };
    /// Free blocks of one size: those in use, and one full magazine aside, so that a build and a destruction that
    /// follow each other do not go to the depot.
    struct List {
        Block * head = nullptr;
        Block * full = nullptr;
        unsigned count = 0;
    };
    struct Depot;

    static constexpr bool passThrough = YON_SLAB_PASSES_THROUGH;
    static constexpr std::size_t granule = 16;
    static constexpr std::size_t classes = largest / granule;
    /// Blocks that travel together.
    static constexpr unsigned magazine = 256;
    static constexpr std::size_t chunkSize = std::size_t{64} << 10;

    /// A block holds at least two granules, which is what the depot needs to chain magazines.
    static constexpr std::size_t classOf(std::size_t size) noexcept {
        return ((size > granule ? size : granule + 1) - 1) / granule;
    }

    bool refill(std::size_t c) noexcept;
    void * carve(std::size_t c);
    void overflow(std::size_t c) noexcept;
    void giveBack() noexcept;
    [[gnu::cold]] static Slab & make();
    static void threadEnds(void * slab) noexcept;

    List lists_[classes];
    char * chunk_ = nullptr;
    std::size_t chunkLeft_ = 0;
};

}  // namespace yon
