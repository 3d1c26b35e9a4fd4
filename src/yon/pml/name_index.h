// The look-up by name in a long list of children.
#pragma once

#include <cstdint>
#include <vector>

#include "yon/pml/ntv.h"

namespace yon::pml::ntv {

/// An open-addressing hash table from the names of the children of a list to their positions. Of equal
/// names the first child counts. REQUIRES: no child that is entered was removed or renamed since.
class NameIndex {
public:
    using Children = ListValue::Children;

    NameIndex();

    /// The position of the child with that name, or `npos`.
    ulong lookUp(Children const & children, istr name) const noexcept;
    /// Enters the name of the child that will stand at `position`. False when it is taken.
    bool insert(Children const & children, istr name, ulong position);
    /// Takes the children that were appended. The position of the first one whose name stands already, or `npos`.
    ulong catchUp(Children const & children);
    /// The first `n` children are entered.
    void covered(ulong n) noexcept { covered_ = n; }

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
