#include "yon/base/std_streams.h"

#include <iostream>

namespace yon {

std::istream & std_in() { return std::cin; }
std::ostream & std_out() { return std::cout; }
std::ostream & std_err() { return std::cerr; }
std::ostream & std_log() { return std::cerr; }

}  // namespace yon
