// The parser of pml: from text to a tree.
#pragma once

#include <iosfwd>

#include "yon/pml/file.h"
#include "yon/pml/ntv.h"
#include "yon/pml/pml_lexer.h"

namespace yon::pml {

/// The content of a file that was read already: the parser takes it for that file.
struct FileText {
    istr filename;
    istr text;
};

/// Reads one node, or one value, into a node that the caller owns. An object serves one parse. Nesting is limited by
/// memory only.
///
/// Errors of the grammar, and names that stand twice in a list, are `std::invalid_argument` with a fixed text and the
/// place of the offending token: "get type token at line 3, column 7", or for files "… at a.pml:3:7". Lines count
/// from 1 by line feeds, columns from 1 by bytes. What was complete by then stays in the node. Input that ends early
/// is no error: the text so far counts.
class YON_API pmlParserBase {
public:
    enum PasingState { PasingName, PasingType, PasingValue };

    pmlParserBase(Unit * unit, PasingState state) noexcept : unit_(unit), state_(state) {}

    /// Parse once, and leave the stream, or the pointer, just past what was read.
    bool doParser(std::istream & in);
    bool doParser(char const *& text);
    bool doParser(istr text);
    /// Reads the whole file, without its UTF-8 byte-order mark; false when it cannot be opened or read.
    bool doParser(File const & file);
    bool doParser(FileText const & file);
    bool doParser(pmlLexer & lexer);

private:
    Unit * unit_;
    PasingState state_;
};

/// Reads one whole node.
class pmlParser : public pmlParserBase {
public:
    explicit pmlParser(Unit * unit) noexcept : pmlParserBase(unit, PasingName) {}
};

/// Reads only a value.
class pmlValueParser : public pmlParserBase {
public:
    explicit pmlValueParser(Unit * unit) noexcept : pmlParserBase(unit, PasingValue) {}
};

/// What can be parsed: a stream, a C string (as an lvalue, which is advanced), a view, a `File`, a
/// `FileText`.
template <class S>
concept PmlSource = requires(pmlParserBase & parser, S && source) {
    parser.doParser(source);
};

/// Clear the node and parse one node into it.
template <PmlSource S>
bool ntvFromPml(Unit & unit, S && source) {
    unit.clear();
    return pmlParser(&unit).doParser(source);
}

/// Parses only a value into the node.
template <PmlSource S>
bool ntvFromValueString(Unit & unit, S && source) {
    return pmlValueParser(&unit).doParser(source);
}

/// A new root, which the caller owns; null when the parse fails.
template <PmlSource S>
Unit * newNTV(S && source) {
    auto unit = std::make_unique<Unit>();
    return ntvFromPml(*unit, source) ? unit.release() : nullptr;
}

/// A bare value, which the caller owns; null when the parse fails.
template <PmlSource S>
ntv::ValueBase * newNtvValue(S && source) {
    Unit unit;
    return ntvFromValueString(unit, source) ? unit.popValue() : nullptr;
}

/// Takes a pair of quotes off a value token that begins and ends with the same one.
YON_API void unescapeString(String & token);

}  // namespace yon::pml
