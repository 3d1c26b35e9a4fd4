// The live state of the process.
#pragma once

#include "yon/base/config.h"

namespace yon {

class dumper;

/// Writes what the process is doing, as a pml document: version and process, the loggers with their settings and
/// counters, the threads with identity, state and traced call stack, the timers that are armed with their remaining
/// time, and the totals of the leak checker. Callable from any thread; each part is a snapshot of its own.
YON_API dumper & dumpState(dumper & d);

}  // namespace yon
