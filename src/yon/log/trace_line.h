// The lines that traced functions write when they are entered and left.
#pragma once

#include "yon/base/istr.h"

namespace yon {

class logger;

enum class TraceEvent { entry, exit };

/// Writes the line of a call with `depth` calls below it, if the logger's trace switch is on.
void writeTraceLine(logger & log, TraceEvent event, istr func, istr info, unsigned long depth) noexcept;

}  // namespace yon
