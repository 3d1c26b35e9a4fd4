#include "yon/log/log_thread.h"

#include <new>
#include <utility>

namespace yon {

LogThread::~LogThread() {
    while (streams != nullptr) delete std::exchange(streams, streams->next);
}

LogThread * LogThread::make() noexcept {
    std::unique_ptr<LogThread> made(new (std::nothrow) LogThread);
    auto const end = [](void * thread) { delete static_cast<LogThread *>(thread); };
    if (made == nullptr || !platform::setSlot(platform::Slot::callStack, made.get(), end)) return nullptr;
    return made.release();
}

}  // namespace yon
