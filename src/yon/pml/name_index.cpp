#include "yon/pml/name_index.h"

#include <mutex>

#include "yon/base/text_hash.h"
#include "yon/pml/ntv_access.h"

namespace yon::pml::ntv {

namespace {

/// The name to read; through a node that may be changed it would be lent.
istr nameOf(Unit const & child) noexcept { return child.name(); }

}  // namespace

NameIndex::NameIndex() : seed_(textHashSeed()), slots_(32) {}

ulong NameIndex::lookUp(Children const & children, istr name) {
    if (anyLent_.load(std::memory_order_acquire)) lookAgain(children);
    return slotOf(children, name, textHash(name, seed_)).position - 1;
}

bool NameIndex::insert(Children const & children, istr name, ulong position) {
    if (anyLent_.load(std::memory_order_relaxed)) lookAgain(children);
    if (used_ >= slots_.size() / 8 * 5) grow();
    hashes_.resize(position);
    std::uint32_t const hash = textHash(name, seed_);
    Slot & slot = slotOf(children, name, hash);
    if (slot.position != 0) return false;
    hashes_.push_back(hash);
    slot = Slot{hash, static_cast<std::uint32_t>(position + 1)};
    ++used_;
    return true;
}

ulong NameIndex::catchUp(Children const & children) {
    ulong twin = npos;
    while (hashes_.size() < children.size()) {
        auto const position = static_cast<ulong>(hashes_.size());
        istr const name = nameOf(*children[position]);
        bool const entered = name.empty() || insert(children, name, position);
        if (!entered && twin == npos) twin = position;
        hashes_.resize(position + 1);
    }
    return twin;
}

bool NameIndex::lend(ulong position) noexcept {
    try {
        lent_.push_back(position);
    } catch (std::bad_alloc const &) {
        return false;
    }
    anyLent_.store(true, std::memory_order_release);
    return true;
}

/// The slot of that name, or the free one where it belongs.
NameIndex::Slot & NameIndex::slotOf(Children const & children, istr name, std::uint32_t hash) noexcept {
    std::size_t const mask = slots_.size() - 1;
    for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
        Slot & slot = slots_[i];
        if (slot.position == 0 || (slot.hash == hash && nameOf(*children[slot.position - 1]) == name)) return slot;
    }
}

void NameIndex::put(std::uint32_t hash, ulong position) noexcept {
    std::size_t const mask = slots_.size() - 1;
    std::size_t i = hash & mask;
    while (slots_[i].position != 0) i = (i + 1) & mask;
    slots_[i] = Slot{hash, static_cast<std::uint32_t>(position + 1)};
}

void NameIndex::remove(std::uint32_t hash, ulong position) noexcept {
    std::size_t const mask = slots_.size() - 1;
    std::size_t hole = hash & mask;
    while (slots_[hole].position != position + 1) {
        if (slots_[hole].position == 0) return;
        hole = (hole + 1) & mask;
    }
    --used_;
    // What was put further along because of this slot moves up, so that probing never meets a gap.
    for (std::size_t i = (hole + 1) & mask; slots_[i].position != 0; i = (i + 1) & mask) {
        std::size_t const home = slots_[i].hash & mask;
        if (((i - home) & mask) < ((i - hole) & mask)) continue;
        slots_[hole] = slots_[i];
        hole = i;
    }
    slots_[hole].position = 0;
}

void NameIndex::grow() {
    std::vector<Slot> old(slots_.size() * 4);
    old.swap(slots_);
    for (Slot const & slot : old) {
        if (slot.position != 0) put(slot.hash, slot.position - 1);
    }
}

/// Enters the names that were lent as they are now. Where two children have the same name now, either is found.
void NameIndex::lookAgain(Children const & children) {
    std::lock_guard const guard(lookingAgain_);
    if (!anyLent_.load(std::memory_order_relaxed)) return;
    for (ulong position : lent_) {
        Unit & child = *children[position];
        detail::Access::returnName(child);
        remove(hashes_[position], position);
        istr const name = nameOf(child);
        if (name.empty()) continue;
        if (used_ >= slots_.size() / 8 * 5) grow();
        hashes_[position] = textHash(name, seed_);
        put(hashes_[position], position);
        ++used_;
    }
    lent_.clear();
    anyLent_.store(false, std::memory_order_release);
}

}  // namespace yon::pml::ntv
