#include "yon/base/throw.h"

namespace yon::detail {

String reportThrow(diagnostics::Location const & where, char const * className, istr detail) {
    String message = className;
    message += ": ";
    message += detail;
    diagnostics::exceptionThrown(where, message);
    return message;
}

}  // namespace yon::detail
