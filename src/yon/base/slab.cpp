#include "yon/base/slab.h"

#include <memory>

#include "yon/base/pooled.h"
#include "yon/base/spin_lock.h"
#include "yon/platform/fork.h"

namespace yon {

/// What no thread holds: magazines of each size, and rests of chunks. Constant-initialised and never destroyed, so
/// that trees may be built and destroyed in static constructors and destructors.
struct Slab::Depot {
    /// The first block of a magazine.
    struct Magazine {
        Block * next;
        Magazine * after;
        unsigned count;
    };
    /// The first bytes of a rest.
    struct Rest {
        Rest * after;
        std::size_t size;
    };
    static_assert(sizeof(Magazine) <= 2 * granule && sizeof(Rest) <= 2 * granule);

    void put(std::size_t c, Block * blocks, unsigned count) noexcept {
        SpinGuard const guard(mutex);
        if (!guard.owns()) return;
        magazines[c] = ::new (static_cast<void *>(blocks)) Magazine{blocks->next, magazines[c], count};
    }

    Block * take(std::size_t c, unsigned & count) noexcept {
        SpinGuard const guard(mutex);
        Magazine * const m = guard.owns() ? magazines[c] : nullptr;
        if (m == nullptr) return nullptr;
        magazines[c] = m->after;
        count = m->count;
        return ::new (static_cast<void *>(m)) Block{m->next};
    }

    void putRest(char * p, std::size_t size) noexcept {
        if (size < largest) return;
        SpinGuard const guard(mutex);
        if (!guard.owns()) return;
        rests = ::new (static_cast<void *>(p)) Rest{rests, size};
    }

    char * takeRest(std::size_t & size) noexcept {
        SpinGuard const guard(mutex);
        Rest * const r = guard.owns() ? rests : nullptr;
        if (r == nullptr) return nullptr;
        rests = r->after;
        size = r->size;
        return reinterpret_cast<char *>(r);
    }

    static Depot & instance() noexcept {
        static constinit Depot depot;
        return depot;
    }

    static void lock() noexcept { instance().mutex.lock(); }
    static void unlock() noexcept { instance().mutex.unlock(); }
    static bool const survivesFork;

    SpinLock mutex;
    Magazine * magazines[classes] = {};
    Rest * rests = nullptr;
};

bool const Slab::Depot::survivesFork = (platform::onFork(platform::ForkLayer::data, lock, unlock, unlock), true);

/// The thread's lists, which go at its end. A node that is destroyed later yet in that thread makes new ones.
Slab & Slab::make() {
    auto own = std::make_unique<Slab>();
    if (!platform::setSlot(platform::Slot::pool, own.get(), threadEnds)) throw std::bad_alloc();
    return *own.release();
}

void Slab::threadEnds(void * slab) noexcept {
    std::unique_ptr<Slab> const own(static_cast<Slab *>(slab));
    own->giveBack();
}

bool Slab::refill(std::size_t c) noexcept {
    List & list = lists_[c];
    if (list.full != nullptr) {
        list.head = list.full;
        list.full = nullptr;
        list.count = magazine;
        return true;
    }
    list.head = Depot::instance().take(c, list.count);
    return list.head != nullptr;
}

void * Slab::carve(std::size_t c) {
    std::size_t const size = (c + 1) * granule;
    if (chunkLeft_ < size) {
        std::size_t left = chunkSize;
        char * const rest = Depot::instance().takeRest(left);
        chunk_ = rest != nullptr ? rest : static_cast<char *>(::operator new(chunkSize));
        chunkLeft_ = left;
    }
    char * const p = chunk_;
    chunk_ += size;
    chunkLeft_ -= size;
    return p;
}

/// The list has one block more than a magazine.
void Slab::overflow(std::size_t c) noexcept {
    List & list = lists_[c];
    if (list.full != nullptr) Depot::instance().put(c, list.full, magazine);
    list.full = list.head->next;
    list.head->next = nullptr;
    list.count = 1;
}

void Slab::giveBack() noexcept {
    Depot & depot = Depot::instance();
    for (std::size_t c = 0; c < classes; ++c) {
        List & list = lists_[c];
        if (list.full != nullptr) depot.put(c, list.full, magazine);
        if (list.head != nullptr) depot.put(c, list.head, list.count);
        list = List();
    }
    depot.putRest(chunk_, chunkLeft_);
    chunkLeft_ = 0;
}

void * detail::allocateBlock(std::size_t size) { return Slab::local().allocate(size); }
void detail::releaseBlock(void * p, std::size_t size) noexcept { Slab::local().release(p, size); }

}  // namespace yon
