// A strict walk over nbr bytes.
#pragma once

#include <vector>

#include "yon/base/istr.h"
#include "yon/nbr/verify.h"

namespace yon::nbr {

/// What stands at one place of the bytes.
struct Token {
    enum What { item, begin, end, done, defect };
    What what;
    ulong offset;        ///< of the head or marker; of the fault
    int tag;             ///< of an element; -1 elsewhere
    unsigned char head;  ///< of an item; 0 for a null item
    istr data;           ///< of an item
    char const * fault;
};

/// Goes from token to token, in order, and stops at `done` or the first `defect`. Owns nothing but the places of the
/// complex values that are open.
class Scanner {
public:
    explicit Scanner(istr bytes) noexcept : bytes_(bytes) {}
    Token next();
    /// How many complex values are open.
    std::size_t depth() const noexcept { return open_.size(); }

private:
    Token item(int tag);
    Token fault(ulong offset, char const * what) const noexcept;
    bool atMarker(char bracket) const noexcept;
    ulong left() const noexcept { return bytes_.size() - at_; }

    istr bytes_;
    ulong at_ = 0;
    std::vector<ulong> open_;
};

}  // namespace yon::nbr
