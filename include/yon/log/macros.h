// The logging macros: they add file, line and function, and cost one test of a flag when their category is off.
//
//     YON_LOG_INFO(log, "listening on port " << port);
//     YON_ENSURE(log, sent == size, "the rest is sent again");
#pragma once

#include <sstream>

#include "yon/base/exception.h"
#include "yon/base/here.h"
#include "yon/log/logger.h"
#include "yon/log/record.h"
#include "yon/log/tracer.h"

namespace yon::detail {
/// The calling thread's stream for building messages: reused, so that a message costs no allocation once it is warm.
/// Nested use within one message expression is allowed.
class YON_API MessageStream;
}  // namespace yon::detail
