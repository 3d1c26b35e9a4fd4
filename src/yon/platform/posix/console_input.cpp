#include "yon/platform/console_input.h"

#include <poll.h>
#include <unistd.h>

#include <cstdio>

namespace yon::platform {

namespace {

bool buffered() noexcept {
#ifdef __GLIBC__
    return stdin->_IO_read_ptr < stdin->_IO_read_end;
#else
    return false;
#endif
}

}  // namespace

bool inputReady() noexcept {
    pollfd input{STDIN_FILENO, POLLIN, 0};
    return buffered() || ::poll(&input, 1, 0) > 0;
}

}  // namespace yon::platform
