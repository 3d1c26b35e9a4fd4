// `stack`: a last-in, first-out container whose elements can be looked at.
#pragma once

#include <deque>
#include <stack>

namespace yon {

/// The standard stack, and iteration from the bottom (pushed first) to the top. Values are independent; one object
/// belongs to one thread at a time.
template <class T, class Container = std::deque<T>>
class stack : public std::stack<T, Container> {
public:
    using std::stack<T, Container>::stack;
    using iterator = typename Container::iterator;
    using const_iterator = typename Container::const_iterator;

    iterator begin() noexcept { return this->c.begin(); }
    iterator end() noexcept { return this->c.end(); }
    const_iterator begin() const noexcept { return this->c.begin(); }
    const_iterator end() const noexcept { return this->c.end(); }
};

}  // namespace yon
