// The environment and the last error of the process.
#pragma once

#include "yon/base/string.h"

namespace yon {

/// The value of an environment variable; empty when it is not set and for a null name. Not to be called while
/// another thread changes the environment.
YON_API String getenv(char const * name);

/// The calling thread's `errno` when it is not 0, else the system's last error code.
YON_API int getLastErrno() noexcept;
/// "(code) text": the text of the C library, else the system's, else the socket layer's. Leaves `errno` as it is.
YON_API String getLastErrorMsg(int code);
/// The same for `getLastErrno()`.
YON_API String getLastErrorMsg();

}  // namespace yon
