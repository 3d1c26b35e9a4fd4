#include "yon/mt/static_mutex.h"

#include "yon/base/leak_checker.h"
#include "yon/mt/lock.h"
#include "yon/platform/fork.h"

namespace yon {

namespace {

struct Section {
    RecMutex mutex;
    Section * next = nullptr;
};

/// Makes the sections of all static mutexes, and keeps them in the order in which they were made. When the library
/// goes, the leak checker forgets them; they themselves stay, for late destructors that lock.
class Init {
public:
    constexpr Init() noexcept = default;
    ~Init() {
        Lock const lock(mutex_);
        for (Section * s = first_; s != nullptr; s = s->next) MemLeakChecker::pop(s);
    }

    void initialize(std::atomic<RecMutex *> & mutex) {
        Lock const lock(mutex_);
        if (mutex.load(std::memory_order_relaxed) != nullptr) return;
        auto * const section = new Section;
        MemLeakChecker::push(section, "src/yon/mt/staticmutex", 93, "yon::StaticMutex::initialize", sizeof(Section));
        *end_ = section;
        end_ = &section->next;
        mutex.store(&section->mutex, std::memory_order_release);
    }

    void lock() const noexcept YON_ACQUIRE(mutex_) { mutex_.lock(); }
    void unlock() const noexcept YON_RELEASE(mutex_) { mutex_.unlock(); }

private:
    RecMutex mutex_;
    Section * first_ = nullptr;
    Section ** end_ = &first_;
};

constinit Init init;

void beforeFork() noexcept YON_NO_THREAD_SAFETY_ANALYSIS { init.lock(); }
void afterFork() noexcept YON_NO_THREAD_SAFETY_ANALYSIS { init.unlock(); }
[[maybe_unused]] bool const survivesFork =
    (platform::onFork(platform::ForkLayer::data, beforeFork, afterFork, afterFork), true);

}  // namespace

constinit StaticMutex globalMutex;

void StaticMutex::initialize() const { init.initialize(section_); }

}  // namespace yon
