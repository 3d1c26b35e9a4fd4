// Dumps of what the standard library holds: containers, pairs, optional values, smart pointers, durations.
//
// A container is a block named "yon::map", "yon::vector" and so on, with one element a line (in the compact layout
// "{1, 2}"). An element of a map reads "key : value", the key plain, the value in its own dump. What is absent, an
// empty optional or smart pointer, reads "<null>".
#pragma once

#include <chrono>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <ratio>
#include <set>
#include <stack>
#include <utility>
#include <vector>

#include "yon/log/dumper.h"

namespace yon {

namespace detail {

/// Writes the block of a container; `writeElement(element)` writes one of them.
template <class Range, class WriteElement>
dumper & dumpRange(dumper & d, istr name, Range const & range, WriteElement writeElement) {
    d.push(name, "@");
    for (auto const & element : range) {
        d.indent();
        writeElement(element);
        d.endline();
    }
    d.pop();
    return d;
}

template <class Range>
dumper & dumpElements(dumper & d, istr name, Range const & range) {
    return dumpRange(d, name, range, [&d](auto const & element) { d << element; });
}

template <class Map>
dumper & dumpEntries(dumper & d, istr name, Map const & map) {
    return dumpRange(d, name, map, [&d](auto const & entry) {
        if constexpr (requires { d.write(entry.first); }) {
            d.write(entry.first);
        } else {
            d << entry.first;
        }
        d.raw(" : ") << entry.second;
    });
}

/// The values of a stack, which the standard container keeps from its users, from the bottom to the top.
template <class T, class C>
C const & valuesOf(std::stack<T, C> const & stack) noexcept {
    struct Opened : std::stack<T, C> {
        static C const & values(std::stack<T, C> const & s) noexcept { return s.*&Opened::c; }
    };
    return Opened::values(stack);
}

/// What `p` points to, or that it points to nothing.
template <class P>
dumper & dumpPointee(dumper & d, P const & p) {
    return p ? d << *p : d.raw("<null>");
}

/// The unit of a duration, or null when it has no name.
template <class Period>
constexpr char const * unitOf() noexcept {
    if constexpr (std::ratio_equal_v<Period, std::nano>) return "ns";
    if constexpr (std::ratio_equal_v<Period, std::micro>) return "us";
    if constexpr (std::ratio_equal_v<Period, std::milli>) return "ms";
    if constexpr (std::ratio_equal_v<Period, std::ratio<1>>) return "s";
    if constexpr (std::ratio_equal_v<Period, std::ratio<60>>) return "min";
    if constexpr (std::ratio_equal_v<Period, std::ratio<3600>>) return "h";
    if constexpr (std::ratio_equal_v<Period, std::ratio<86400>>) return "d";
    return nullptr;
}

}  // namespace detail

template <class K, class V, class C, class A>
dumper & operator<<(dumper & d, std::map<K, V, C, A> const & c) {
    return detail::dumpEntries(d, "yon::map", c);
}
template <class K, class V, class C, class A>
dumper & operator<<(dumper & d, std::multimap<K, V, C, A> const & c) {
    return detail::dumpEntries(d, "yon::multimap", c);
}
template <class T, class A>
dumper & operator<<(dumper & d, std::list<T, A> const & c) {
    return detail::dumpElements(d, "yon::list", c);
}
template <class T, class A>
dumper & operator<<(dumper & d, std::vector<T, A> const & c) {
    return detail::dumpElements(d, "yon::vector", c);
}
template <class T, class C, class A>
dumper & operator<<(dumper & d, std::set<T, C, A> const & c) {
    return detail::dumpElements(d, "yon::set", c);
}
template <class T, class C>
dumper & operator<<(dumper & d, std::stack<T, C> const & c) {
    return detail::dumpElements(d, "yon::stack", detail::valuesOf(c));
}

/// Reads "first : second".
template <class A, class B>
dumper & operator<<(dumper & d, std::pair<A, B> const & pair) {
    d << pair.first;
    return d.raw(" : ") << pair.second;
}
template <class T>
dumper & operator<<(dumper & d, std::optional<T> const & value) {
    return detail::dumpPointee(d, value);
}
template <class T, class D>
dumper & operator<<(dumper & d, std::unique_ptr<T, D> const & p) {
    return detail::dumpPointee(d, p);
}
template <class T>
dumper & operator<<(dumper & d, std::shared_ptr<T> const & p) {
    return detail::dumpPointee(d, p);
}
/// The count and its unit: "1500ms", "3[1/90]s".
template <class R, class P>
dumper & operator<<(dumper & d, std::chrono::duration<R, P> const & duration) {
    d << duration.count();
    if (char const * const unit = detail::unitOf<P>()) return d.raw(unit);
    return d.raw("[").write(P::num).raw("/").write(P::den).raw("]s");
}

}  // namespace yon
