// `Filename`: a path and its two parts.
#pragma once

#include "yon/base/string.h"

namespace yon {

class dumper;

/// A path, split at its last backslash into directory and file name: setting the path splits it, setting a part joins
/// both. A forward slash is an ordinary character. A value; accepts every text and raises nothing.
class YON_API Filename {
public:
    Filename() = default;
    Filename(istr full) { this->full(full); }
    Filename(istr dir, istr file) : dir_(dir), file_(file) { merge(); }

    Filename & full(istr s);
    Filename & dir(istr s);
    Filename & file(istr s);
    String const & full() const noexcept { return full_; }
    String const & dir() const noexcept { return dir_; }
    String const & file() const noexcept { return file_; }

    /// The parts from the path.
    Filename & split();
    /// The path from the parts; without a directory it is the file name alone.
    Filename & merge();
    static constexpr char separator() noexcept { return '\\'; }

    dumper & dump(dumper & d) const;
    std::ostream & dump(std::ostream & os) const;

private:
    String full_;
    String dir_;
    String file_;
};

}  // namespace yon
