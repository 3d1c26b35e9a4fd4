// What is raised, as text that tests can compare.
#pragma once

#include <stdexcept>
#include <string>

namespace yon {

/// The message of the exception that `f` raises, or "nothing".
template <class X = std::exception, class F>
std::string raised(F f) {
    try {
        f();
    } catch (X const & e) {
        return e.what();
    }
    return "nothing";
}

/// The place that an exception of the library names, as "file:line function", or "nowhere".
template <class X, class F>
std::string raisedAt(F f) {
    try {
        f();
    } catch (X const & e) {
        return std::string(e.file()) + ':' + std::to_string(e.line()) + ' ' + e.func();
    }
    return "nowhere";
}

}  // namespace yon
