#pragma once

namespace yon {

/// Base of classes whose objects cannot be copied.
class noncopyable {
public:
    noncopyable(noncopyable const &) = delete;
    noncopyable & operator=(noncopyable const &) = delete;

protected:
    constexpr noncopyable() noexcept = default;
    ~noncopyable() = default;
};

}  // namespace yon
