#include "yon/base/system.h"

namespace yon {

constinit std::atomic<bool> System::closing_{false};

}  // namespace yon
