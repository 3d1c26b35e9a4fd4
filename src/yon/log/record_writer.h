// The records of the log for callers within the library: texts need no terminator, and the location is one value.
#pragma once

#include "yon/base/diagnostics.h"

namespace yon {

class logger;

// As the functions of the same purpose in record.h. They let nothing out.
void writeDebugRecord(logger & log, istr func, istr message, istr tag) noexcept;
void writeInfoRecord(logger & log, istr message, istr tag) noexcept;
void writeErrorRecord(logger & log, diagnostics::Location const & where, istr cause, istr severity) noexcept;
void writeThrowRecord(logger & log, diagnostics::Location const & where, istr cause) noexcept;

}  // namespace yon
