#include "yon/base/leak_checker.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <ostream>
#include <string>

#include "yon/base/chars.h"
#include "yon/base/spin_lock.h"
#include "yon/platform/fork.h"

namespace yon {

namespace {

struct Slot {
    void const * block;  ///< null where the slot is free
    MLC_Entry entry;
};

struct Free {
    void operator()(void * p) const noexcept { std::free(p); }
};

/// A hash table of blocks with linear probing. Trivially destroyed: it serves until the process is gone. Its memory
/// comes from the C library, so that nothing in here allocates through what it watches.
class Shard {
public:
    /// Returns whether the block was known. Without memory to grow it stays as it is, full ones forget the block.
    bool insert(void const * block, std::size_t hash, MLC_Entry const & entry) noexcept {
        if (used_ + 1 > capacity_ / 4 * 3) grow();
        if (used_ + 1 >= capacity_) return false;
        Slot & s = slots_[find(block, hash)];
        bool const known = s.block != nullptr;
        used_ += !known;
        s = {block, entry};
        return known;
    }

    void erase(void const * block, std::size_t hash) noexcept {
        if (capacity_ == 0) return;
        std::size_t hole = find(block, hash);
        if (slots_[hole].block == nullptr) return;
        --used_;
        // What was put further along because of this block moves up, so that probing never meets a gap.
        for (std::size_t i = next(hole); slots_[i].block != nullptr; i = next(i)) {
            std::size_t const home = hashOf(slots_[i].block) & (capacity_ - 1);
            if (((i - home) & (capacity_ - 1)) < ((i - hole) & (capacity_ - 1))) continue;
            slots_[hole] = slots_[i];
            hole = i;
        }
        slots_[hole].block = nullptr;
    }

    void clear() noexcept {
        std::free(slots_);
        slots_ = nullptr;
        capacity_ = used_ = 0;
    }

    std::size_t size() const noexcept { return used_; }
    template <class Visit>
    void forEach(Visit visit) const {
        for (std::size_t i = 0; i < capacity_; ++i) {
            if (slots_[i].block != nullptr) visit(slots_[i].entry);
        }
    }

    /// The low bits choose the slot, the high bits the shard.
    static std::size_t hashOf(void const * block) noexcept {
        std::uint64_t const x = reinterpret_cast<std::uintptr_t>(block) * 0x9E3779B97F4A7C15u;
        return static_cast<std::size_t>(x ^ x >> 32);
    }

    SpinLock lock_;

private:
    std::size_t next(std::size_t i) const noexcept { return (i + 1) & (capacity_ - 1); }
    /// The slot of the block, or the free one where it belongs.
    std::size_t find(void const * block, std::size_t hash) const noexcept {
        std::size_t i = hash & (capacity_ - 1);
        while (slots_[i].block != nullptr && slots_[i].block != block) i = next(i);
        return i;
    }
    void grow() noexcept {
        std::size_t const wanted = capacity_ == 0 ? 16 : 2 * capacity_;
        auto * const grown = static_cast<Slot *>(std::calloc(wanted, sizeof(Slot)));
        if (grown == nullptr) return;
        Slot * const old = std::exchange(slots_, grown);
        std::size_t const count = std::exchange(capacity_, wanted);
        for (std::size_t i = 0; i < count; ++i) {
            if (old[i].block != nullptr) slots_[find(old[i].block, hashOf(old[i].block))] = old[i];
        }
        std::free(old);
    }

    Slot * slots_ = nullptr;
    std::size_t capacity_ = 0;  ///< 0 or a power of two
    std::size_t used_ = 0;
};

constexpr std::size_t shardCount = 64;
constinit Shard shards[shardCount];
constinit std::atomic<std::size_t> replacements{0};

Shard & shardOf(std::size_t hash) noexcept { return shards[hash >> (8 * sizeof hash - 6)]; }
static_assert(shardCount == 1 << 6);

template <class Visit>
void forEachLocked(Visit visit) noexcept {
    for (Shard & s : shards) {
        SpinGuard const guard(s.lock_);
        if (guard.owns()) visit(s);
    }
}

void lockAll() noexcept {
    for (Shard & s : shards) s.lock_.lock();
}
void unlockAll() noexcept {
    for (Shard & s : shards) s.lock_.unlock();
}
[[maybe_unused]] bool const survivesFork =
    (platform::onFork(platform::ForkLayer::base, lockAll, unlockAll, unlockAll), true);

int comparePlaces(MLC_Entry const & a, MLC_Entry const & b) noexcept {
    if (int const r = StrCmp(a.file, b.file); r != 0) return r;
    if (a.line != b.line) return a.line < b.line ? -1 : 1;
    return StrCmp(a.func, b.func);
}

/// Adds up neighbours of one place; returns the new end.
MLC_Entry * merge(MLC_Entry * first, MLC_Entry * last) noexcept {
    MLC_Entry * out = first;
    for (MLC_Entry * p = first; p != last; ++p) {
        if (out != first && comparePlaces(out[-1], *p) == 0) {
            out[-1].count += p->count;
            out[-1].bytes += p->bytes;
        } else {
            *out++ = *p;
        }
    }
    return out;
}

bool isLarger(MLC_Entry const & a, MLC_Entry const & b) noexcept {
    return a.bytes != b.bytes ? a.bytes > b.bytes : comparePlaces(a, b) < 0;
}
bool isBefore(MLC_Entry const & a, MLC_Entry const & b) noexcept { return comparePlaces(a, b) < 0; }

std::size_t growth(std::size_t before, std::size_t now) noexcept { return now > before ? now - before : 0; }

std::string amounts(std::size_t count, std::size_t bytes) {
    return std::to_string(count) + " blocks, " + std::to_string(bytes) + " bytes\n";
}

}  // namespace

constinit std::atomic<bool> MemLeakChecker::on_{false};
constinit std::atomic<bool> MemLeakChecker::used_{false};

void MemLeakChecker::push_i(void const * block, char const * file, unsigned int line, char const * func,
                            std::size_t bytes) noexcept {
    used_.store(true, std::memory_order_relaxed);
    std::size_t const hash = Shard::hashOf(block);
    Shard & s = shardOf(hash);
    SpinGuard const guard(s.lock_);
    if (guard.owns() && s.insert(block, hash, {file, line, func, 1, bytes}))
        replacements.fetch_add(1, std::memory_order_relaxed);
}

void MemLeakChecker::pop_i(void const * block) noexcept {
    std::size_t const hash = Shard::hashOf(block);
    Shard & s = shardOf(hash);
    SpinGuard const guard(s.lock_);
    if (guard.owns()) s.erase(block, hash);
}

std::size_t MemLeakChecker::count() noexcept {
    std::size_t sum = 0;
    forEachLocked([&](Shard const & s) { sum += s.size(); });
    return sum;
}

std::size_t MemLeakChecker::bytes() noexcept {
    std::size_t sum = 0;
    forEachLocked([&](Shard const & s) { s.forEach([&](MLC_Entry const & e) { sum += e.bytes; }); });
    return sum;
}

std::size_t MemLeakChecker::replaced() noexcept { return replacements.load(std::memory_order_relaxed); }

void MemLeakChecker::clear() noexcept {
    forEachLocked([](Shard & s) { s.clear(); });
    replacements.store(0, std::memory_order_relaxed);
}

void MemLeakChecker::visitGroups(void (*visit)(void *, MLC_Entry const &), void * arg) {
    // The entries are copied first: nothing foreign is called under a lock.
    std::unique_ptr<MLC_Entry[], Free> entries;
    std::size_t count = 0;
    forEachLocked([&](Shard const & s) {
        if (s.size() == 0) return;
        void * const grown = std::realloc(entries.get(), (count + s.size()) * sizeof(MLC_Entry));
        if (grown == nullptr) return;
        static_cast<void>(entries.release());
        entries.reset(static_cast<MLC_Entry *>(grown));
        s.forEach([&](MLC_Entry const & e) { entries[count++] = e; });
    });
    MLC_Entry * const first = entries.get();
    std::sort(first, first + count, isBefore);
    MLC_Entry * const last = merge(first, first + count);
    std::sort(first, last, isLarger);
    std::for_each(first, last, [&](MLC_Entry const & e) { visit(arg, e); });
}

std::vector<MLC_Entry> MemLeakChecker::snapshot() {
    std::vector<MLC_Entry> places;
    forEach([&](MLC_Entry const & e) { places.push_back(e); });
    return places;
}

std::vector<MLC_Entry> MemLeakChecker::since(std::vector<MLC_Entry> const & before) {
    std::vector<MLC_Entry> known = before;
    std::sort(known.begin(), known.end(), isBefore);
    std::vector<MLC_Entry> grown;
    forEach([&](MLC_Entry e) {
        auto const old = std::lower_bound(known.begin(), known.end(), e, isBefore);
        if (old != known.end() && comparePlaces(*old, e) == 0) {
            e.count = growth(old->count, e.count);
            e.bytes = growth(old->bytes, e.bytes);
        }
        if (e.count != 0 || e.bytes != 0) grown.push_back(e);
    });
    std::sort(grown.begin(), grown.end(), isLarger);
    return grown;
}

std::ostream & MemLeakChecker::report(std::ostream & os) {
    std::string text;
    std::size_t count = 0;
    std::size_t bytes = 0;
    forEach([&](MLC_Entry const & e) {
        text += std::string(SafeStr(e.file)) + ':' + std::to_string(e.line) + ' ' + SafeStr(e.func) + ": " +
                amounts(e.count, e.bytes);
        count += e.count;
        bytes += e.bytes;
    });
    text += "total: " + amounts(count, bytes);
    return os.write(text.data(), static_cast<std::streamsize>(text.size()));
}

}  // namespace yon

void * operator new(std::size_t size, char const *, unsigned int, char const *) { return ::operator new(size); }
void operator delete(void * p, char const *, unsigned int, char const *) noexcept { ::operator delete(p); }
