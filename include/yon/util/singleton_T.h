#pragma once

#include <atomic>

#include "yon/base/leak_checker.h"
#include "yon/mt/creation_lock.h"
#include "yon/mt/rec_mutex.h"

namespace yon {

/// The one object of a class for the whole process: made by the first `instance`, deleted by `destroy` and never by
/// itself, so it serves late destructors, too. A class with such an object offers an `instance()` of its own that
/// passes its location; the instantiation belongs into its source file, or each module would have an object. A child
/// that is forked while another thread makes the object makes one of its own.
template <class T>
class Singleton_T {
public:
    /// Makes the object if there is none, registered with the location given (literals). Threads that come at once
    /// get the same one; one that is there costs no lock. Raises what the constructor raises. Null after `destroy`.
    static T *& instance(char const * file, unsigned int line, char const * function) {
        std::atomic_ref<T *> const object(object_);
        if (object.load(std::memory_order_acquire) != nullptr) return object_;
        detail::CreationLock const lock(mutex_);
        if (object_ == nullptr) {
            T * const made = new T;
            MemLeakChecker::push(made, file, line, function, sizeof(T));
            object.store(made, std::memory_order_release);
        }
        return object_;
    }

    /// Deletes the object, if there is one; the next `instance` makes a new one. REQUIRES: nobody uses it any more.
    static void destroy() {
        detail::CreationLock const lock(mutex_);
        MemLeakChecker::pop(object_);
        delete object_;
        std::atomic_ref<T *>(object_).store(nullptr, std::memory_order_release);
    }

private:
    static inline constinit T * object_ = nullptr;
    static inline constinit RecMutex mutex_;
};

}  // namespace yon
