// The type words that nodes share.
#pragma once

#include "yon/base/string.h"

namespace yon::pml {

/// The one copy of a short type word, made at its first use and kept for the life of the process; null when the word
/// is long or the table is full, and the caller keeps a copy of its own. Callable from any thread, without a lock.
/// REQUIRES: not empty.
String const * sharedTypeWord(istr word);

}  // namespace yon::pml
