// What all command-line programs do around their work.
#pragma once

#include <functional>

#include "source.h"

namespace pmltool {

/// Runs the work of a program and returns its status: `BadInput`, memory that is used up and output that fails are
/// told on the console, and end it with status 1.
int guarded(char const * program, Console & console, std::function<int()> const & work);

/// Makes brackets safe in the names of a command that takes many files: there the parser of command lines takes
/// "[a,b]" for a list of names.
void protectFileNames(std::vector<std::string> & arguments);

}  // namespace pmltool
