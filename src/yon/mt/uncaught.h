#pragma once

#include "yon/base/diagnostics.h"

namespace yon::detail {

/// Records the exception that is being handled as an error: `text` and what the exception prints.
void recordUncaught(diagnostics::Location const & where, char const * text) noexcept;

/// Records the exception that is being handled, as one that the body of a thread has let out.
void recordUncaught() noexcept;

}  // namespace yon::detail
