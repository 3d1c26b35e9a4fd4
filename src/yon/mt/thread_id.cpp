#include "yon/mt/thread_id.h"

#include "yon/log/dumper.h"
#include "yon/platform/locks.h"

namespace yon {

ThreadId ThreadId::current() noexcept { return platform::currentThreadId(); }

std::ostream & operator<<(std::ostream & os, ThreadId const & id) { return os << static_cast<unsigned int>(id); }

dumper & operator<<(dumper & d, ThreadId const & id) { return d << static_cast<unsigned int>(id); }

}  // namespace yon
