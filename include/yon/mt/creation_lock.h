// `detail::CreationLock`: held while the one object of a class is made.
#pragma once

#include <cstdint>

#include "yon/mt/rec_mutex.h"

namespace yon::detail {

/// Holds a mutex while its thread makes or deletes an object of the process. A child that another thread forks
/// meanwhile has not the thread that would go on: there the mutex is free, and what is half made is left as it is.
class YON_API CreationLock {
public:
    explicit CreationLock(RecMutex & mutex) noexcept;
    CreationLock(CreationLock const &) = delete;
    CreationLock & operator=(CreationLock const &) = delete;
    ~CreationLock();

private:
    friend struct CreationsUnderWay;

    RecMutex & mutex_;
    std::uintptr_t const thread_;
    CreationLock * next_ = nullptr;
};

}  // namespace yon::detail
