// What the conversions share beyond their public forms.
#pragma once

#include "yon/base/conversion_result.h"
#include "yon/base/istr.h"

namespace yon::detail {

/// Whether `s` is UTF-8, and if not, why. Never `targetExhausted`.
ConversionResult checkUtf8(istr s) noexcept;

}  // namespace yon::detail
