#include "yon/pml/name_index.h"

#include "yon/base/text_hash.h"

namespace yon::pml::ntv {

namespace {

/// Through a constant node: asking for a name that may be changed drops the index of its list.
istr nameAt(NameIndex::Children const & children, ulong i) noexcept {
    Unit const & child = *children[i];
    return child.name();
}

}  // namespace

NameIndex::NameIndex() : seed_(textHashSeed()), slots_(32) {}

ulong NameIndex::lookUp(Children const & children, istr name) const noexcept {
    Slot const * const slot = slotOf(children, name, textHash(name, seed_));
    return slot->position == 0 ? npos : slot->position - 1;
}

bool NameIndex::insert(Children const & children, istr name, ulong position) {
    if (used_ >= slots_.size() / 8 * 5) grow();
    std::uint32_t const hash = textHash(name, seed_);
    Slot * const slot = const_cast<Slot *>(slotOf(children, name, hash));
    if (slot->position != 0) return false;
    *slot = Slot{hash, position + 1};
    ++used_;
    return true;
}

ulong NameIndex::catchUp(Children const & children) {
    ulong twin = npos;
    for (; covered_ < children.size(); ++covered_) {
        istr const name = nameAt(children, covered_);
        if (!name.empty() && !insert(children, name, covered_) && twin == npos) twin = covered_;
    }
    return twin;
}

/// The slot of that name, or the free one where it belongs.
NameIndex::Slot const * NameIndex::slotOf(Children const & children, istr name, std::uint32_t hash) const noexcept {
    std::size_t const mask = slots_.size() - 1;
    for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
        Slot const & slot = slots_[i];
        if (slot.position == 0 || (slot.hash == hash && nameAt(children, slot.position - 1) == name)) return &slot;
    }
}

void NameIndex::grow() {
    std::vector<Slot> old(slots_.size() * 4);
    old.swap(slots_);
    std::size_t const mask = slots_.size() - 1;
    for (Slot const & slot : old) {
        if (slot.position == 0) continue;
        std::size_t i = slot.hash & mask;
        while (slots_[i].position != 0) i = (i + 1) & mask;
        slots_[i] = slot;
    }
}

}  // namespace yon::pml::ntv
