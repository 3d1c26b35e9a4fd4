// Files, as far as the systems differ.
#pragma once

#include <cstdio>
#include <string>
#include <system_error>

namespace yon::platform {

/// The file that a name means in the end, when it is a symbolic link; otherwise, or when that fails, the name.
std::string linkTarget(std::string const & name);

/// Makes a file that must not exist yet, with the permissions and, where possible, the owner of a regular file that may
/// be written. Opens it for writing in binary form; the caller closes it.
std::error_code createLike(std::string const & name, std::string const & model, std::FILE *& file);

/// Writes everything out, down to the disk.
std::error_code flushToDisk(std::FILE * file);

/// Puts a closed file in the place of another in the same directory, in one step.
std::error_code replaceFile(std::string const & from, std::string const & to);

/// Ends the translation of line ends.
void setBinary(std::FILE * file);

}  // namespace yon::platform
