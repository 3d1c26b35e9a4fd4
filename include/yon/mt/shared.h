// Reference counts inside objects, for use with `Handle`.
#pragma once

#include <atomic>

#include "yon/base/config.h"

namespace yon {

/// Base of counted objects that one thread uses. The count starts at 0 and belongs to the object: copies start at 0,
/// assignments leave it alone. The release that takes it to 0 deletes the object, unless that is switched off, as
/// for objects on the stack and inside others. Deleted objects are unregistered with the leak checker.
class YON_API SimpleShared {
public:
    SimpleShared() noexcept = default;
    SimpleShared(SimpleShared const &) noexcept {}
    SimpleShared & operator=(SimpleShared const &) noexcept { return *this; }
    virtual ~SimpleShared() = default;

    void __incRef() noexcept { ++count_; }
    void __decRef() {
        if (--count_ == 0 && !noDelete_) delete_i();
    }
    int __getRef() const noexcept { return count_; }
    /// Whether the last release leaves the object alive.
    void __setNoDelete(bool noDelete) noexcept { noDelete_ = noDelete; }

private:
    void delete_i();

    int count_ = 0;
    bool noDelete_ = false;
};

/// The same for objects that threads share: the count is atomic. What one thread did to the object before it let go
/// is seen by the one that deletes it. Whether to delete is set before the object is shared.
class YON_API Shared {
public:
    Shared() noexcept = default;
    Shared(Shared const &) noexcept {}
    Shared & operator=(Shared const &) noexcept { return *this; }
    virtual ~Shared() = default;

    void __incRef() noexcept { count_.fetch_add(1, std::memory_order_relaxed); }
    void __decRef() {
        if (count_.fetch_sub(1, std::memory_order_acq_rel) == 1 && !noDelete_) delete_i();
    }
    /// Takes a reference back without ever deleting the object.
    void __letGo() noexcept { count_.fetch_sub(1, std::memory_order_acq_rel); }
    int __getRef() const noexcept { return count_.load(std::memory_order_acquire); }
    void __setNoDelete(bool noDelete) noexcept { noDelete_ = noDelete; }

private:
    void delete_i();

    std::atomic<int> count_{0};
    bool noDelete_ = false;
};

}  // namespace yon
