// What the parts of pml may do with nodes beyond the public interface.
#pragma once

#include <new>

#include "yon/base/leak_checker.h"
#include "yon/pml/ntv.h"
#include "yon/pml/slab.h"

namespace yon::pml::ntv {

/// The source file under which nodes and values stand in the leak checker.
inline constexpr char const * sourceFile = "src/yon/pml/ntv";

/// Makes a node or a value and registers it under the function that made it.
template <class T, class... Args>
T * make(Slab & slab, unsigned int line, char const * func, Args &&... args) {
    void * const block = slab.allocate(sizeof(T));
    T * p = nullptr;
    try {
        p = ::new (block) T(std::forward<Args>(args)...);
    } catch (...) {
        slab.release(block, sizeof(T));
        throw;
    }
    MemLeakChecker::push(p, sourceFile, line, func, sizeof(T));
    return p;
}

namespace detail {

struct Access {
    /// Gives a node without a value a text, or an empty list.
    static void setText(Unit & unit, Slab & slab, istr text);
    static ListValue & setList(Unit & unit, Slab & slab);

    /// Exchanges the list's storage with `storage`.
    static void swapChildren(ListValue & list, ListValue::Children & storage) noexcept { list.data_.swap(storage); }

    /// Appends a child, unless its key is taken.
    static bool tryAdd(ListValue & list, Unit * child, Unit * owner) { return list.tryAdd(child, owner); }
    /// The child by name or "[n]", or null; never a step of a path.
    static Unit * child(Unit const & unit, istr key) {
        ListValue const * const list = unit.listValue();
        return list != nullptr ? list->find(key) : nullptr;
    }
    static void setType(Unit & unit, istr type) { unit.setType(type); }
    /// The index of names has looked at the node again.
    static void returnName(Unit & unit) noexcept { unit.nameLent_ = false; }
    static void setName(Unit & unit, istr name) { unit.name_ = name; }

    /// Gives `to`, which has no value, a deep copy of `from`'s value.
    static void copyValue(Unit & to, Unit const & from);
    /// Gives `to`, which has no value, a deep copy of a list.
    static void copyList(Unit & to, ListValue const & from);
    /// Deletes nodes and all below them; their lists are left alone.
    static void destroy(ListValue::Children & units) noexcept;
    static void destroyNode(Slab & slab, Unit * unit) noexcept;
    static void destroyValue(Slab & slab, ValueBase * value, Unit::Kind kind) noexcept;
};

}  // namespace detail

}  // namespace yon::pml::ntv
