// `CallStack`: the traced functions that a thread is in.
#pragma once

#include "yon/base/current.h"
#include "yon/base/stack.h"

namespace yon {

/// Locations from the outermost call (bottom) to the most recent one (top), and the text written between them. A
/// value; the separator is a decoration that constant objects take too.
class CallStack {
public:
    stack<Current> & container() noexcept { return entries_; }
    stack<Current> const & container() const noexcept { return entries_; }

    /// Sets the separator, "\n" at first; null empties it.
    CallStack const & separator(char const * text) const {
        separator_ = text;
        return *this;
    }
    /// NUL-terminated.
    istr separator() const noexcept { return separator_; }

private:
    stack<Current> entries_;
    mutable String separator_ = "\n";
};

/// Writes the entries from the top down. The first one has its own prefix, the prefix of all others is set to the
/// separator, and stays so.
YON_API std::ostream & operator<<(std::ostream & os, CallStack const & s);

}  // namespace yon
