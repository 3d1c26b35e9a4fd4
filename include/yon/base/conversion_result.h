// How a conversion between encodings ended.
#pragma once

namespace yon {

enum class ConversionResult {
    ok,
    sourceExhausted,  ///< the source ends within a character
    targetExhausted,  ///< the target has no room for the next character
    sourceIllegal,    ///< the source holds what is no character, or none of the target's
};

}  // namespace yon
