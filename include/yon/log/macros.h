// The logging macros: they add file, line and function, and cost a test or two of a flag when their category is off.
//
//     YON_TRACE(log);
//     YON_LOG_INFO(log, "listening on port " << port);
//     YON_ENSURE(log, sent == size, "the rest is sent again");
//     YON_LOG_EVENT(log, "accepted", "peer", address, "bytes", size);
//
// A message is a stream expression. Logger and message are evaluated once, the message only when it is wanted; what
// the message raises gets out, and there is no record then.
#pragma once

#include "yon/base/exception.h"
#include "yon/base/here.h"
#include "yon/log/logger.h"
#include "yon/log/message_stream.h"
#include "yon/log/record.h"
#include "yon/log/tracer.h"

/// The bare text. Needs `dataLogOn`.
#define YON_LOG_DATA(log, message) YON_LOG_DATA_I(YON_UNIQUE(yonLog_), log, message)

/// A line for the debug file with a category tag. Needs `debugOn` and `debugLogOn`.
#define YON_LOG_DEBUG(log, tag, message) YON_LOG_DEBUG_I(YON_UNIQUE(yonLog_), log, tag, message)

/// A line, on disk when it returns. Always written.
#define YON_LOG_INFO(log, message)                                                                  \
    do {                                                                                            \
        ::yon::writeInfoLog(log, __FILE__, __LINE__, YON_FUNC, YON_MESSAGE_TEXT(message), nullptr); \
    } while (false)

/// Framed records with location and call stack. Always written.
#define YON_LOG_WARNING(log, message) YON_LOG_SEVERITY_I(log, message, "<WARNING>")
#define YON_LOG_ERROR(log, message) YON_LOG_SEVERITY_I(log, message, "<ERROR>")

/// The record of a caught object, which prints itself: an exception, or anything that a stream takes.
#define YON_LOG_EXCEPTION(log, e)                     \
    do {                                              \
        ::yon::detail::writeCaught(log, YON_HERE, e); \
    } while (false)

/// Records a condition that does not hold, and what will be done about it: a text, which may be empty. The program
/// goes on. An assertion is about what the code relies on, an ensurance about what it has achieved.
#define YON_ASSERT(log, condition, willDo) YON_LOG_FAILURE_I(writeAssertFailure, log, condition, #condition, willDo)
#define YON_ENSURE(log, condition, willDo) YON_LOG_FAILURE_I(writeEnsureFailure, log, condition, #condition, willDo)

/// One line of pml, which no text in it can break: YON_LOG_EVENT(log, "name", "key", value, …) writes
/// "name(key(value)…)". Values are texts, scalars, or what a stream prints; line feeds in them become "\n". Of two
/// equal keys the last one counts. Needs `dataLogOn`.
#define YON_LOG_EVENT(log, ...) YON_LOG_EVENT_I(YON_UNIQUE(yonLog_), log, __VA_ARGS__)

/// Puts the function on the traced call stack until the end of the scope. Lines on entry and exit need `traceOn`; the
/// info, a stream expression, is only evaluated then. As a statement of a block.
#define YON_TRACE(log) \
    ::yon::TraceEntry YON_UNIQUE(yonTrace_)(log, __FILE__, __LINE__, YON_FUNC, ::yon::TraceEntry::both, nullptr)
#define YON_TRACE_INFO(log, info) YON_TRACE_INFO_I(YON_UNIQUE(yonLog_), YON_UNIQUE(yonTrace_), log, info)

// What they are made of. The names are unique, so that a message or a nested block may log without shadowing.

#define YON_PASTE_I(a, b) a##b
#define YON_PASTE(a, b) YON_PASTE_I(a, b)
#define YON_UNIQUE(name) YON_PASTE(name, __COUNTER__)

#define YON_MESSAGE_TEXT(message) ::yon::detail::messageText(::yon::detail::MessageLoan().stream() << message)

#define YON_LOG_DATA_I(target, log, message)                                                      \
    do {                                                                                          \
        if (::yon::logger & target = (log); target.dataLogOn()) {                                 \
            ::yon::writeDataLog(target, __FILE__, __LINE__, YON_FUNC, YON_MESSAGE_TEXT(message)); \
        }                                                                                         \
    } while (false)

#define YON_LOG_DEBUG_I(target, log, tag, message)                                                      \
    do {                                                                                                \
        if (::yon::logger & target = (log); target.debugOn() && target.debugLogOn()) {                  \
            ::yon::writeDebugLog(target, __FILE__, __LINE__, YON_FUNC, YON_MESSAGE_TEXT(message), tag); \
        }                                                                                               \
    } while (false)

#define YON_LOG_SEVERITY_I(log, message, severity)                                                    \
    do {                                                                                              \
        ::yon::writeErrorLog(log, __FILE__, __LINE__, YON_FUNC, YON_MESSAGE_TEXT(message), severity); \
    } while (false)

#define YON_LOG_FAILURE_I(write, log, condition, text, willDo) \
    do {                                                       \
        if (!(condition)) [[unlikely]]                         \
            ::yon::detail::write(log, text, YON_HERE, willDo); \
    } while (false)

#define YON_LOG_EVENT_I(target, log, ...)                                                                       \
    do {                                                                                                        \
        if (::yon::logger & target = (log); target.dataLogOn()) ::yon::detail::writeEvent(target, __VA_ARGS__); \
    } while (false)

#define YON_TRACE_INFO_I(target, entry, log, info)                                         \
    ::yon::logger & target = (log);                                                        \
    ::yon::TraceEntry entry(target, __FILE__, __LINE__, YON_FUNC, ::yon::TraceEntry::both, \
                            target.traceOn() ? YON_MESSAGE_TEXT(info) : nullptr)
