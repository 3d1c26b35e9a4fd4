// The seam for processes that end.
#pragma once

namespace yon::platform {

/// The process ends, and the system has taken its other threads away wherever they stood, their locks held. Cheap.
bool othersAreGone() noexcept;

}  // namespace yon::platform
