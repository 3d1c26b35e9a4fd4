#pragma once

namespace yon::detail {

/// Records the exception that is being handled, as one that the body of a thread has let out.
void recordUncaught() noexcept;

}  // namespace yon::detail
