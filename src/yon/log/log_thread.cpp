#include "yon/log/log_thread.h"

#include <new>

#include "yon/platform/threads.h"

namespace yon {

LogThread::~LogThread() { detail::deleteStreams(streams); }

LogThread * LogThread::existing() noexcept {
    return static_cast<LogThread *>(platform::slot(platform::Slot::callStack));
}

LogThread * LogThread::current() noexcept {
    if (LogThread * const there = existing()) [[likely]]
        return there;
    std::unique_ptr<LogThread> made(new (std::nothrow) LogThread);
    auto const end = [](void * thread) { delete static_cast<LogThread *>(thread); };
    if (made == nullptr || !platform::setSlot(platform::Slot::callStack, made.get(), end)) return nullptr;
    return made.release();
}

}  // namespace yon
