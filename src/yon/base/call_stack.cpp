#include "yon/base/call_stack.h"

#include <iterator>
#include <ostream>

#include "yon/base/location_text.h"

namespace yon {

namespace detail {

void appendCallStack(std::string & text, CallStack const & s, istr separator) {
    stack<Current> const & entries = s.container();
    if (entries.empty()) return;
    appendLocation(text, entries.top(), entries.top().prefix());
    for (auto p = std::next(std::make_reverse_iterator(entries.end())); p.base() != entries.begin(); ++p) {
        appendLocation(text, *p, separator);
    }
}

void decorateCallers(CallStack const & s) {
    stack<Current> const & entries = s.container();
    if (entries.empty()) return;
    for (auto p = entries.begin(); p != std::prev(entries.end()); ++p) p->prefix(s.separator().c_str());
}

}  // namespace detail

std::ostream & operator<<(std::ostream & os, CallStack const & s) {
    std::string text;
    detail::appendCallStack(text, s, s.separator());
    detail::decorateCallers(s);
    return os.write(text.data(), static_cast<std::streamsize>(text.size()));
}

}  // namespace yon
