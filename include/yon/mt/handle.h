// `Handle<T>`: the smart pointer to objects that count their references themselves.
#pragma once

#include <compare>
#include <concepts>
#include <cstddef>
#include <functional>
#include <utility>

#include "yon/base/throw.h"
#include "yon/mt/type_text.h"

namespace yon {

namespace detail {
inline constexpr std::string_view arrowBefore = "yon::HandleBase<", arrowAfter = ">::operator`->'";
}  // namespace detail

/// A pointer to a counted object, or to none; what handles of every kind share. Does not count by itself.
template <class T>
class HandleBase {
public:
    using element_type = T;

    T * get() const noexcept { return ptr_; }
    explicit operator bool() const noexcept { return ptr_ != nullptr; }
    bool operator!() const noexcept { return ptr_ == nullptr; }

    /// Raise `NullHandleException` when there is no object.
    T * operator->() const {
        if (ptr_ == nullptr) [[unlikely]] {
            throwNull();
        }
        return ptr_;
    }
    T & operator*() const { return *operator->(); }

protected:
    HandleBase() noexcept = default;
    explicit HandleBase(T * ptr) noexcept : ptr_(ptr) {}
    HandleBase(HandleBase const &) noexcept = default;
    HandleBase & operator=(HandleBase const &) noexcept = default;
    ~HandleBase() = default;

    T * ptr_ = nullptr;

private:
    [[noreturn, gnu::cold, gnu::noinline]] static void throwNull() {
        constexpr char const * function = detail::typeText<T, detail::arrowBefore, detail::arrowAfter>.data();
        YON_THROW_AT(YON_LOCATION("include/yon/mt/handle", 38, function), NullHandleException);
    }
};

/// Holds a reference to an object with `__incRef` and `__decRef` (`SimpleShared`, `Shared`), or to none. The last
/// handle to let go deletes the object. Different handles may be used by different threads as the object's count
/// allows; one handle is for one thread at a time. Moves and swaps do not touch the count.
template <class T>
class Handle : public HandleBase<T> {
public:
    Handle() noexcept = default;
    Handle(std::nullptr_t) noexcept {}
    Handle(T * ptr) noexcept : HandleBase<T>(ptr) { hold(); }
    Handle(Handle const & other) noexcept : HandleBase<T>(other) { hold(); }
    Handle(Handle && other) noexcept : HandleBase<T>(other.leave()) {}
    template <class U>
    requires std::convertible_to<U *, T *> Handle(Handle<U> const & other)
    noexcept : Handle(static_cast<T *>(other.get())) {}
    template <class U>
    requires std::convertible_to<U *, T *> Handle(Handle<U> && other)
    noexcept : HandleBase<T>(other.leave()) {}
    ~Handle() {
        if (this->ptr_ != nullptr) this->ptr_->__decRef();
    }

    /// Takes the new object before it lets the old one go.
    Handle & operator=(Handle other) noexcept {
        swap(other);
        return *this;
    }

    void swap(Handle & other) noexcept { std::swap(this->ptr_, other.ptr_); }
    friend void swap(Handle & a, Handle & b) noexcept { a.swap(b); }

private:
    template <class U>
    friend class Handle;

    void hold() noexcept {
        if (this->ptr_ != nullptr) this->ptr_->__incRef();
    }
    T * leave() noexcept { return std::exchange(this->ptr_, nullptr); }
};

/// Handles compare as their pointers do.
template <class T, class U>
bool operator==(HandleBase<T> const & a, HandleBase<U> const & b) noexcept {
    return a.get() == b.get();
}
template <class T, class U>
std::strong_ordering operator<=>(HandleBase<T> const & a, HandleBase<U> const & b) noexcept {
    return std::compare_three_way()(a.get(), b.get());
}
template <class T>
bool operator==(HandleBase<T> const & a, std::type_identity_t<T> const * b) noexcept {
    return a.get() == b;
}

}  // namespace yon

template <class T>
struct std::hash<yon::Handle<T>> {
    std::size_t operator()(yon::Handle<T> const & h) const noexcept { return std::hash<T *>()(h.get()); }
};
