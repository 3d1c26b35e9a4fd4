// Allocations that the leak checker knows by place: YON_NEW and YON_DELETE.
//
//     Node * n = YON_NEW(Node)("name", 3);
//     YON_DELETE(n);
#pragma once

#include <type_traits>

#include "yon/base/here.h"
#include "yon/base/leak_checker.h"

namespace yon::detail {

/// The block that holds `*p`, also when `p` points to a base class inside it.
template <class T>
void const * blockOf(T const * p) noexcept {
    if constexpr (std::is_polymorphic_v<T>) {
        return dynamic_cast<void const *>(p);
    } else {
        return p;
    }
}

template <class T>
struct LocatedNew {
    static_assert(alignof(T) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__, "located blocks have the default alignment");
    diagnostics::Location where;

    template <class... Args>
    T * operator()(Args &&... args) const {
        T * const p = new (where.file, where.line, where.func) T(std::forward<Args>(args)...);
        MemLeakChecker::push(blockOf(p), where.file, where.line, where.func, sizeof(T));
        return p;
    }
};

template <class T>
void locatedDelete(T * p) noexcept {
    static_assert(sizeof(T) != 0);
    if (p == nullptr) return;
    MemLeakChecker::pop(blockOf(p));
    delete p;
}

}  // namespace yon::detail

/// YON_NEW(T)(args…): an object of its own, registered with this place. Raises what the constructor raises and
/// `std::bad_alloc`. The caller owns it and releases it with YON_DELETE, or registers it nowhere and uses `delete`.
#define YON_NEW(...) (::yon::detail::LocatedNew<__VA_ARGS__>{YON_HERE})

/// Unregisters and deletes an object; nothing for null.
#define YON_DELETE(p) (::yon::detail::locatedDelete(p))
