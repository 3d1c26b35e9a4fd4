// `PerThread`: an object for each thread that outlives no thread.
#pragma once

namespace yon {

/// Makes a `T` for each thread that asks, and deletes it when the thread ends. Works before main and after exit,
/// where there is none.
template <class T>
class PerThread {
public:
    /// The calling thread's object, made on first use; null without memory and once the end of the thread is past.
    static T * get() noexcept {
        if (object_ != nullptr) [[likely]]
            return object_;
        return ended_ ? nullptr : make();
    }
    /// The same, null also before the first use.
    static T * made() noexcept { return object_; }

private:
    struct End {
        ~End() {
            T * const object = object_;
            object_ = nullptr;
            ended_ = true;
            delete object;
        }
    };

    static T * make() noexcept {
        static thread_local End end;
        static_cast<void>(&end);
        try {
            object_ = new T;
        } catch (...) {
        }
        return object_;
    }

    static inline constinit thread_local T * object_ = nullptr;
    static inline constinit thread_local bool ended_ = false;
};

}  // namespace yon
