#include "yon/mt/handle_wrapper.h"

#include "yon/platform/locks.h"

namespace yon {

HandleWrapper::~HandleWrapper() {
    if (handle_ != nullptr && close_) platform::closeHandle(handle_);
}

}  // namespace yon
