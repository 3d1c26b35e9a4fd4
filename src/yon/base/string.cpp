#include "yon/base/string.h"

#include "yon/base/made_once.h"

namespace yon {

String & String::trimLeftRight(char c) {
    if (size() >= 2 && front() == c && back() == c) {
        pop_back();
        erase(begin());
    }
    return *this;
}

String const & String::null() noexcept {
    static constinit MadeOnce<String> empty;
    return empty.get();
}

}  // namespace yon
