// The look-up by name in a long list of children.
#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "yon/base/spin_lock.h"
#include "yon/pml/ntv.h"

namespace yon::pml::ntv {

/// An open-addressing hash table from the names of the children of a list to their positions.
///
/// A child whose name was lent to be changed is looked at again before the next look-up. Threads that only read the
/// tree may look up at the same time; the first of them does that.
class NameIndex {
public:
    using Children = ListValue::Children;

    NameIndex();

    /// The position of a child with that name, or `npos`.
    ulong lookUp(Children const & children, istr name);
    /// Enters the name of the child that will stand at `position`, behind all others. False when it is taken.
    bool insert(Children const & children, istr name, ulong position);
    /// Enters the names of the children that were appended. The position of the first one whose name stood already,
    /// or `npos`.
    ulong catchUp(Children const & children);
    /// The name of that child may be about to change. False when there is no memory to remember it.
    bool lend(ulong position) noexcept;
    /// The children that will be looked at again.
    std::vector<ulong> const & lent() const noexcept { return lent_; }

private:
    struct Slot {
        std::uint32_t hash;
        std::uint32_t position;  ///< plus 1; 0 is free
    };

    Slot & slotOf(Children const & children, istr name, std::uint32_t hash) noexcept;
    void put(std::uint32_t hash, ulong position) noexcept;
    void remove(std::uint32_t hash, ulong position) noexcept;
    void grow();
    void lookAgain(Children const & children);

    std::uint64_t const seed_;
    std::vector<Slot> slots_;
    std::size_t used_ = 0;
    std::vector<std::uint32_t> hashes_;  ///< of the names as they were entered, by position
    std::vector<ulong> lent_;
    std::atomic<bool> anyLent_{false};
    SpinLock lookingAgain_;
};

}  // namespace yon::pml::ntv
