// The standard streams of the process.
#pragma once

#include <iosfwd>

#include "yon/base/config.h"

namespace yon {

YON_API std::istream & std_in();
YON_API std::ostream & std_out();
YON_API std::ostream & std_err();
/// The standard error stream as well, the very object that `std_err` returns, not the buffered log stream.
YON_API std::ostream & std_log();

}  // namespace yon
