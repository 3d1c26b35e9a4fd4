#pragma once

#include "yon/base/config.h"

namespace yon {

class Thread;

/// Is told when a thread of its own ends by itself.
class YON_API ThreadOwner {
public:
    virtual ~ThreadOwner() = default;
    /// Called on the ending thread, with no lock of the library held but the one that keeps the owner from going.
    virtual void onThreadExit(Thread * thread) = 0;
};

}  // namespace yon
