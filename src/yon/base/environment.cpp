#include "yon/base/environment.h"

#include <ace/ACE.h>
#include <ace/OS_Errno.h>

#include <cstdlib>

#include "yon/platform/platform.h"

namespace yon {

namespace {

String errorText(int code) {
    // The would-block code of the sockets is a plain error number here.
    static constexpr int socketWouldBlock = 10035;
    static constexpr int wouldBlock = 11;
    String const fromLibrary = platform::errnoText(code == socketWouldBlock ? wouldBlock : code);
    if (!fromLibrary.empty() && !istr(fromLibrary).beginWith("Unknown error")) return fromLibrary;
    String const fromSystem = platform::systemText(code);
    if (!fromSystem.empty()) return fromSystem;
    String const fromSockets = ACE::sock_error(code);
    return fromSockets.empty() ? fromLibrary : fromSockets;
}

}  // namespace

String getenv(char const * name) { return name != nullptr ? std::getenv(name) : nullptr; }

int getLastErrno() noexcept { return errno != 0 ? errno : platform::lastError(); }

String getLastErrorMsg(int code) {
    ACE_Errno_Guard const keep(errno);
    return "(" + std::to_string(code) + ") " + errorText(code);
}

String getLastErrorMsg() { return getLastErrorMsg(getLastErrno()); }

}  // namespace yon
