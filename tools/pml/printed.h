// Trees as text of bounded size.
#pragma once

#include <string>

#include "source.h"
#include "yon/pml/show.h"

namespace pmltool {

/// Indentation and path comments, which grow with the square of the depth, would be far longer than the document.
struct TooMuchText {};

/// A node of the document as pml, with quotes where blanks need them. Raises `TooMuchText` in the layouts that
/// indent.
std::string printed(Unit const & node, Source const & source, yon::pml::ShowMode mode, bool showPaths = false);

}  // namespace pmltool
