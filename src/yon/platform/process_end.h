// The seam for processes that end.
#pragma once

#include <cstddef>

namespace yon::platform {

/// The process ends, and the system has taken its other threads away wherever they stood, their locks held. Cheap.
bool othersAreGone() noexcept;

/// Writes to standard error with a direct call of the system: no lock of a stream can be in the way.
void tellStandardError(char const * data, std::size_t size) noexcept;

}  // namespace yon::platform
