// `AutoPtr`: a single-owner pointer to an array, and the conversions that return one.
#pragma once

#include "yon/base/config.h"
#include "yon/base/types.h"

namespace yon {

/// Owns one array (`new T[]`). Copying and assigning transfer the ownership and leave the source null.
template <class T>
class AutoPtr {
public:
    constexpr AutoPtr(T * p = nullptr) noexcept : p_(p) {}
    AutoPtr(AutoPtr & o) noexcept : p_(o.release()) {}
    AutoPtr(AutoPtr && o) noexcept : p_(o.release()) {}
    AutoPtr & operator=(AutoPtr & o) noexcept {
        reset(o.release());
        return *this;
    }
    AutoPtr & operator=(AutoPtr && o) noexcept { return *this = o; }
    ~AutoPtr() { delete[] p_; }

    T * get() const noexcept { return p_; }
    T & operator*() const noexcept { return *p_; }
    T & operator[](ulong i) const noexcept { return p_[i]; }
    operator T *() const noexcept { return p_; }

    /// Deletes the old array when it is another one, and takes `p`.
    void reset(T * p = nullptr) noexcept {
        if (p_ != p) delete[] p_;
        p_ = p;
    }
    /// Gives the array to the caller.
    T * release() noexcept {
        T * const p = p_;
        p_ = nullptr;
        return p;
    }

private:
    T * p_;
};

/// Fresh NUL-terminated copies; empty for null. Wide text goes through the system code page, which may raise
/// `UTFConversionException`.
YON_API AutoPtr<char> to_str(char const * s);
YON_API AutoPtr<char> to_str(wchar const * s);
inline AutoPtr<char> to_str(std::nullptr_t) noexcept { return nullptr; }
YON_API AutoPtr<wchar> to_wstr(char const * s);
YON_API AutoPtr<wchar> to_wstr(wchar const * s);
inline AutoPtr<wchar> to_wstr(std::nullptr_t) noexcept { return nullptr; }

}  // namespace yon
