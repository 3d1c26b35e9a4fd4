// The texts of locations and call stacks, without a look at the decorations that they carry.
#pragma once

#include <string>

#include "yon/base/call_stack.h"

namespace yon::detail {

/// Appends the text of a location behind `prefix`.
void appendLocation(std::string & text, Current const & where, istr prefix);
/// Appends the entries from the top down, `separator` between them.
void appendCallStack(std::string & text, CallStack const & s, istr separator);
/// Stores the stack's separator as the prefix of all entries but the top one.
void decorateCallers(CallStack const & s);

}  // namespace yon::detail
