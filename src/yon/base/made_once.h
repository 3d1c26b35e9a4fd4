// `MadeOnce<T>`: an object that its first use makes.
#pragma once

#include <atomic>
#include <memory>

namespace yon {

/// For static objects: constant-initialised, and what it makes is never destroyed, so that a static destructor may
/// still ask for it. No thread waits for another one, which a forked child might not have: threads that come at once
/// make one each and keep the first.
template <class T>
class MadeOnce {
public:
    T & get() {
        T * object = object_.load(std::memory_order_acquire);
        if (object == nullptr) {
            auto made = std::make_unique<T>();
            if (object_.compare_exchange_strong(object, made.get(), std::memory_order_acq_rel))
                object = made.release();
        }
        return *object;
    }

private:
    std::atomic<T *> object_{nullptr};
};

}  // namespace yon
