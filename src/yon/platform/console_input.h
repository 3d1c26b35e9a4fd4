// The seam for standard input that is polled.
#pragma once

namespace yon::platform {

/// Whether reading from the C library's standard input finds something at once: bytes, or its end. Its buffer is looked
/// at first. Where only a console can be asked, other inputs count as ready, and reading them may wait.
bool inputReady() noexcept;

}  // namespace yon::platform
