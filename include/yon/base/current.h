// `Current`: a source location that prints itself.
#pragma once

#include "yon/base/diagnostics.h"
#include "yon/base/string.h"

namespace yon {

/// A source location with a prefix that is written in front of it. `file` and `func` are not owned: they point to
/// literals. A value; the prefix is a decoration that constant objects take too, so an object that two threads print
/// needs their agreement on it.
class Current {
public:
    /// No location: null, line 0, null.
    Current() noexcept = default;
    Current(char const * file, unsigned int line, char const * func) noexcept
        : file_(file), line_(line), func_(func) {}
    explicit Current(diagnostics::Location const & where) noexcept : Current(where.file, where.line, where.func) {}

    char const * file() const noexcept { return file_; }
    unsigned int line() const noexcept { return line_; }
    char const * func() const noexcept { return func_; }

    /// Sets the prefix; null empties it.
    Current const & prefix(char const * text) const {
        prefix_ = text;
        return *this;
    }
    istr prefix() const noexcept { return prefix_; }

    /// By file, line and function, the texts by unsigned bytes. Null counts as empty.
    bool operator<(Current const & o) const noexcept {
        if (int const r = StrCmp(file_, o.file_); r != 0) return r < 0;
        if (line_ != o.line_) return line_ < o.line_;
        return StrCmp(func_, o.func_) < 0;
    }

private:
    char const * file_ = nullptr;
    unsigned int line_ = 0;
    char const * func_ = nullptr;
    mutable String prefix_;
};

/// Writes "func(file:line)", of the file what follows its last backslash. Behind a prefix the text folds at column
/// 119: what does not fit is right-aligned on a second line of 118 columns, and if it is too long for that its
/// beginning is lost.
YON_API std::ostream & operator<<(std::ostream & os, Current const & where);

}  // namespace yon
