// The writer of pml: from a tree to text.
#pragma once

#include <concepts>
#include <iosfwd>

#include "yon/pml/pml_parser.h"

namespace yon::pml {

/// Print a tree. False, and nothing printed, for an unknown layout; false for a target that cannot be written. A
/// string is replaced, a file emptied first. Depth is limited by memory only.
YON_API bool ntvToPml(Unit const & unit, std::ostream & out, ShowMode mode, ShowPattern pattern = {});
YON_API bool ntvToPml(Unit const & unit, String & out, ShowMode mode, ShowPattern pattern = {});
YON_API bool ntvToPml(Unit const & unit, File const & out, ShowMode mode, ShowPattern pattern = {});

/// What can be printed to: a stream, a `String`, a `File`.
template <class T>
concept PmlTarget = requires(Unit const & unit, T && out) {
    ntvToPml(unit, out, ShowMode(1), ShowPattern());
};

template <PmlTarget T>
bool ntvToCompactPml(Unit const & unit, T && out, ShowPattern pattern = {}) {
    return ntvToPml(unit, out, ShowMode::COMPACT, pattern);
}
template <PmlTarget T>
bool ntvToSimplePml(Unit const & unit, T && out, ShowPattern pattern = {}) {
    return ntvToPml(unit, out, ShowMode::SIMPLE, pattern);
}
template <PmlTarget T>
bool ntvToMixedPml(Unit const & unit, T && out, ShowPattern pattern = {}) {
    return ntvToPml(unit, out, ShowMode::MIXED, pattern);
}
template <PmlTarget T>
bool ntvToFormattedPml(Unit const & unit, T && out, ShowPattern pattern = {}) {
    return ntvToPml(unit, out, ShowMode::FORMATTED, pattern);
}

/// Quotes a text that holds a character with a meaning in pml: single quotes round it, a backslash before every
/// backslash and single quote. Other texts stay as they are.
YON_API void escapeString(String & text);

/// Parses one node from the source and prints it to the target. False for a source that is missing, a target that
/// cannot be written and an unknown layout; errors of the grammar pass out, before the target is touched.
template <PmlSource S, PmlTarget T>
bool format(S && source, T && target, ShowMode mode = ShowMode::FORMATTED, ShowPattern pattern = {}) {
    Unit unit;
    return mode.known() && ntvFromPml(unit, source) && ntvToPml(unit, target, mode, pattern);
}

}  // namespace yon::pml
