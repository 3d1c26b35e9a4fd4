// The records of the log: each function formats one event and hands it to a logger.
//
// Records with a header begin with the date-time and identity texts of the calling thread and the logger's identity.
// Framed records are blocks 118 characters wide with their title at the right margin, the location and the traced
// call stack. `file`, `func` and titles are NUL-terminated. Callable from any thread; they let nothing out.
#pragma once

#include "yon/base/config.h"

namespace yon {

class logger;

/// The bare text.
YON_API void writeDataLog(logger & log, char const * file, unsigned line, char const * func,
                          char const * text) noexcept;
/// One header line, to the debug file. A null message is empty.
YON_API void writeDebugLog(logger & log, char const * file, unsigned line, char const * func, char const * message,
                           char const * tag) noexcept;
/// One header line; returns when it is in the file. The tag may be null.
YON_API void writeInfoLog(logger & log, char const * file, unsigned line, char const * func, char const * message,
                          char const * tag) noexcept;
/// One ruled line: `left1` and `left2` at its start, `right` at its end, `fill` between; plain text if too long.
YON_API void writeEntryLog(logger & log, char const * left1, char const * left2, char const * right,
                           char fill) noexcept;
/// A framed block; returns when it is in the file. No header line for a null `head`, no title, footer or closing rule
/// for null ones (an empty closing text makes a rule).
YON_API void writeLog(logger & log, char const * head, char const * title, char const * body, char const * footer,
                      char const * closing) noexcept;
/// Framed records with cause, location and call stack. The severity is the title: "<ERROR>", "<WARNING>".
YON_API void writeErrorLog(logger & log, char const * file, unsigned line, char const * func, char const * cause,
                           char const * severity) noexcept;
YON_API void writeExcptLog(logger & log, char const * file, unsigned line, char const * func,
                           char const * what) noexcept;
YON_API void assertFailure(logger & log, char const * condition, char const * file, unsigned line, char const * func,
                           char const * willDo) noexcept;
YON_API void ensureFailure(logger & log, char const * condition, char const * file, unsigned line, char const * func,
                           char const * willDo) noexcept;
YON_API void exceptionThrown(logger & log, char const * file, unsigned line, char const * func,
                             char const * cause) noexcept;

}  // namespace yon
