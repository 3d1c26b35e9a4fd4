// Text for people to read.
#pragma once

#include <string>
#include <string_view>

#include "source.h"

namespace pmltool {

/// The text with control characters escaped, so that it cannot disturb a terminal; cut when it is longer than `most`.
std::string visible(std::string_view text, std::size_t most = std::string_view::npos);

/// The end of a path when it is very long, so that a deep tree is listed in the time that it is large.
std::string shortPath(std::string const & path);

/// ":" and the node's type, when it has one.
std::string typeSuffix(Unit const & node);

/// The node's text as it stands in pml, or how many children it has.
std::string valueText(Unit const & node, std::size_t most = std::string_view::npos);

}  // namespace pmltool
