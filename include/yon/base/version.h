// The version block.
#pragma once

#include <iosfwd>

#include "yon/base/config.h"

namespace yon {

/// `os << show_version{}` writes what this library is, the current local time, when it was compiled and with which
/// options: several lines, each flushed.
struct show_version {};

YON_API std::ostream & operator<<(std::ostream & os, show_version);

}  // namespace yon
