#include "yon/base/string.h"

namespace yon {

String & String::trimLeftRight(char c) {
    if (size() >= 2 && front() == c && back() == c) {
        pop_back();
        erase(begin());
    }
    return *this;
}

String const & String::null() noexcept {
    // Never destroyed, so that a static destructor may still ask for it.
    static String const & empty = *new String;
    return empty;
}

}  // namespace yon
