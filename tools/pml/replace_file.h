// Writing a file without ever leaving half of one.
#pragma once

#include <string>
#include <string_view>

namespace pmltool {

/// Replaces the content of a file in one step: after a crash at any time the file holds the old content or the new
/// one. Permissions stay as they are, and a symbolic link goes on pointing to its target. Raises `BadInput` with the
/// system's reason, and the file is untouched then.
void replaceFile(std::string const & file, std::string_view head, std::string_view content);

}  // namespace pmltool
