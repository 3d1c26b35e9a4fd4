// Trees as text of bounded size.
#pragma once

#include <string>

#include "source.h"
#include "yon/pml/show.h"

namespace pmltool {

/// Indentation and path comments, which grow with the square of the depth, would come to gigabytes.
struct TooMuchText {};

/// The node as pml. Raises `TooMuchText` in the layouts that indent.
std::string printed(Unit const & node, yon::pml::ShowMode mode, yon::pml::ShowPattern pattern);

}  // namespace pmltool
