// The look-up by name in a long list of children.
#pragma once

#include <cstdint>
#include <vector>

#include "yon/pml/ntv.h"

namespace yon::pml::ntv {

/// An open-addressing hash table from the names of the first `covered` children of a list to their positions. It
/// catches up with what was appended at the next look-up. Of equal names the first child counts.
class NameIndex {
public:
    using Children = ListValue::Children;

    NameIndex();

    /// The position of the child with that name, or `npos`. REQUIRES: nothing before `covered()` was removed or renamed.
    ulong find(Children const & children, istr name);
    /// The same without catching up, for threads that only read.
    ulong lookUp(Children const & children, istr name) const noexcept;
    /// Takes the children that were appended. The position of the first one whose name stands already, or `npos`.
    ulong catchUp(Children const & children);
    ulong covered() const noexcept { return covered_; }

private:
    struct Slot {
        std::uint32_t hash;
        std::uint32_t position;  ///< plus 1; 0 is free
    };

    Slot const * slotOf(Children const & children, istr name, std::uint32_t hash) const noexcept;
    void grow();

    std::uint64_t const seed_;
    std::vector<Slot> slots_;
    ulong used_ = 0;
    ulong covered_ = 0;
};

}  // namespace yon::pml::ntv
