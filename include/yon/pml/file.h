// `File`: the name of a pml file.
#pragma once

#include <iosfwd>

#include "yon/base/string.h"

namespace yon::pml {

/// Names a file to be opened for reading or writing. A plain value; nothing is opened before `open`.
class YON_API File {
public:
    File() = default;
    File(istr name) : filename_(name) {}
    File & operator=(istr name) {
        filename_ = name;
        return *this;
    }
    String const & filename() const noexcept { return filename_; }

    /// Open the file in binary form, for reading or, emptied, for writing. False when it cannot be opened.
    bool open(std::ifstream & in) const;
    bool open(std::ofstream & out) const;

    /// The content of a regular file; anything else, such as a pipe, is refused without waiting for it. Raises
    /// `std::system_error`, which names the file and what is wrong; `std::errc::file_too_large` for more than `limit`
    /// bytes.
    String load(ulong limit = npos - 1) const;

private:
    String filename_;
};

}  // namespace yon::pml
