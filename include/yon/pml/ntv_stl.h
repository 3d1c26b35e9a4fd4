// Standard containers in the value tree.
//
// Lists, vectors, deques and sets become unnamed children in their order; maps become one child per entry, named by
// its key. Elements are whatever a node stores, containers included.
#pragma once

#include <string_view>
#include <utility>

#include "yon/pml/ntv.h"

namespace yon::pml::ntv {

namespace detail {

template <class T>
concept TextLike = std::convertible_to<T const &, std::string_view> ||
    std::convertible_to<T const &, std::basic_string_view<wchar>> || std::same_as<T, Bytes>;

/// A container with one value per key.
template <class C>
concept MapContainer = requires(C & c, typename C::key_type key, typename C::mapped_type value) {
    { c.emplace(std::move(key), std::move(value)).second } -> std::convertible_to<bool>;
};

/// A list, vector, deque or set, with or without order.
template <class C>
concept ElementContainer = !TextLike<C> && !requires {
    typename C::mapped_type;
}
&&requires(C & c, typename C::value_type value) {
    c.insert(c.end(), std::move(value));
    c.begin();
};

/// Adds a new child, without a value, to a node with a list.
YON_API Unit & output_(Unit & list, istr name);
/// A node with an empty list.
YON_API Unit emptyList();
/// Gives `unit` the value of `list` in place of its own.
YON_API void moveValue(Unit & list, Unit & unit);
/// Whether the value can be that of a container: a list, or the empty text that an empty one is printed as.
YON_API bool holdsElements(Unit const & unit) noexcept;

/// The name under which a map's entry stands, and back.
template <class Key>
String nameOfKey(Key const & key) {
    Unit text;
    text << key;
    return String(text.getStringValue());
}
template <class Key>
bool keyOfName(istr name, Key & key) {
    return Unit(istr(), istr(), name) >> key;
}

}  // namespace detail

/// Store a container in place of the value. Raises "duplicated unit", and leaves the node alone, when two keys are
/// the same as text. Keys are printed as names: what pml reads back from a text are keys without blanks at their
/// edges and without characters that pml gives a meaning.
template <detail::ElementContainer C>
Unit & operator<<(Unit & unit, C const & elements) {
    Unit list = detail::emptyList();
    for (typename C::value_type const & element : elements) detail::output_(list, istr()) << element;
    detail::moveValue(list, unit);
    return unit;
}
template <detail::MapContainer C>
Unit & operator<<(Unit & unit, C const & entries) {
    Unit list = detail::emptyList();
    for (auto const & [key, value] : entries) detail::output_(list, detail::nameOfKey(key)) << value;
    detail::moveValue(list, unit);
    return unit;
}

/// Replace a container's content by what the node holds. False, and the container untouched, when the value is
/// absent, is a text that is not empty, or when any element does not convert or any key comes twice.
template <detail::ElementContainer C>
bool operator>>(Unit const & unit, C & elements) {
    if (!detail::holdsElements(unit)) return false;
    C read;
    for (ulong i = 0; i < unit.numofChildren(); ++i) {
        typename C::value_type element{};
        if (!(unit[i] >> element)) return false;
        read.insert(read.end(), std::move(element));
    }
    elements = std::move(read);
    return true;
}
template <detail::MapContainer C>
bool operator>>(Unit const & unit, C & entries) {
    if (!detail::holdsElements(unit)) return false;
    C read;
    for (ulong i = 0; i < unit.numofChildren(); ++i) {
        typename C::key_type key{};
        typename C::mapped_type value{};
        if (!detail::keyOfName(unit[i].name(), key) || !(unit[i] >> value)) return false;
        if (!read.emplace(std::move(key), std::move(value)).second) return false;
    }
    entries = std::move(read);
    return true;
}

}  // namespace yon::pml::ntv
