// A walk over the nodes of a document as they stand in its text.
#pragma once

#include "scanner.h"

namespace pmltool {

/// Is told what a document holds, in its order. Tokens are good during the call.
///
/// A node is a `name`, perhaps a `type`, and then one of `text`, `bare`, or `listBegin`, its nodes and `listEnd`.
class Visitor {
public:
    virtual ~Visitor() = default;
    /// Every token, before what it means.
    virtual void token(Token const &) {}
    virtual void name(Token const &) {}
    virtual void type(Token const &) {}
    virtual void text(Token const &) {}
    /// The node ends without a value.
    virtual void bare() {}
    virtual void listBegin() {}
    /// With the token that ends the list: what stands between its last node and its ")".
    virtual void listEnd(Token const &) {}
    /// Something is wrong at an offset.
    virtual void error(std::size_t, char const *) {}
};

/// Walks over the text, in which the library reads the same nodes. Where the parser would give up, the walk reports
/// the parser's error and goes on. Depth costs memory and not stack.
void walk(std::string_view text, Visitor & visitor);

}  // namespace pmltool
