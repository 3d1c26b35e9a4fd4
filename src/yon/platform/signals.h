// Requests that the system or the user sends to the process.
#pragma once

namespace yon::platform {

enum class Request {
    stop,    ///< an interrupt, a request to end, a closed console
    reload,  ///< a hang-up
};

/// Sends the requests to `take`, one at a time, on a thread that is made for it and lives as long as the process; it
/// is to be called before other threads are started, so that none of them is interrupted. A second call changes who
/// takes them. Returns the system's error number, 0 for success.
int takeRequests(void (*take)(Request)) noexcept;

}  // namespace yon::platform
