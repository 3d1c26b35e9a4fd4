// `nbr::verify`: whether bytes are what the writer writes.
#pragma once

#include <optional>

#include "yon/base/config.h"
#include "yon/base/istr.h"

namespace yon::nbr {

struct Defect {
    ulong offset;       ///< of the tag, head, size or data that is wrong
    char const * what;  ///< a literal
};

/// The first defect of a sequence of values, or nothing when all of it is as it should be. What `parser` passes over
/// is a defect, too: values that are cut off or not closed, unknown heads, text that is not UTF-8, and no value at
/// all. Null and empty items are none. Depth is limited by memory only.
YON_API std::optional<Defect> verify(istr bytes);

}  // namespace yon::nbr
