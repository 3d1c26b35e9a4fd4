// `stream`: a tree with a direction, and `field`, which binds variables to it. One function describes a set of
// variables for both ways:
//
//     void Settings::codec(yon::pml::stream & s) {
//         s & field("host", host_) & field("port", port_, "ushort") & field("peers", peers_);
//     }
#pragma once

#include <atomic>
#include <map>
#include <memory>

#include "yon/pml/ntv_stl.h"
#include "yon/pml/pml_writer.h"

namespace yon::pml {

/// Tells that a text is the name of a file to be read.
struct from_file {};

/// A name that is made once and looked up often.
class name_id {
public:
    explicit name_id(istr name) : name_(name) {}
    String const & name() const noexcept { return name_; }

private:
    String name_;
};

/// Owns a node, and knows whether fields are written to it (output) or read from it (input). Errors of the grammar
/// are those of the parser. A plain value; one object belongs to one thread at a time, but threads that only read may
/// share it.
class YON_API stream {
public:
    using from_file = yon::pml::from_file;

    /// An empty node, for output.
    stream() noexcept = default;
    /// Of a copy of the node, for input.
    stream(Unit const & unit) : unit_(unit), input_(true) {}
    /// Of what `from` parses, for input. A file that cannot be read leaves the node empty.
    explicit stream(istr text, bool valueOnly = false) : input_(true) { from(text, valueOnly); }
    stream(istr filename, from_file, bool valueOnly = false) : input_(true) {
        from(filename, from_file(), valueOnly);
    }

    /// Clear the node and parse a whole node, or only a value, into it; the direction stays. False for a file that
    /// cannot be read.
    bool from(istr text, bool valueOnly = false);
    bool from(istr filename, from_file, bool valueOnly = false);

    bool isInputStream() const noexcept { return input_; }
    bool isOutputStream() const noexcept { return !input_; }
    void setAsInputStream() const noexcept { input_ = true; }
    void setAsOutputStream() const noexcept { input_ = false; }

    Unit & unit() noexcept { return unit_; }
    Unit const & unit() const noexcept { return unit_; }
    stream & name(istr name) { return unit_.name(name), *this; }
    stream & type(istr type) { return unit_.type(type), *this; }
    stream & value(istr text) { return unit_.value(text), *this; }
    String const & name() const noexcept { return unit_.name(); }
    String const & type() const noexcept { return unit_.type(); }
    stream & clear() noexcept { return unit_.clear(), *this; }

    /// The child of that name, or "[n]", or null. Names are never steps of a path here, not even ".".
    Unit const * child(istr name) const;
    bool has(istr name) const { return child(name) != nullptr; }
    /// Whether the child is missing, has no value or an empty text; false for a list.
    bool empty(istr name) const;
    /// The child of that name, or `Unit::null()`.
    Unit const & operator[](istr name) const;
    Unit const & operator[](name_id const & id) const { return (*this)[istr(id.name())]; }
    /// The child of that name, added when it is missing.
    Unit & operator[](istr name) { return unit_[name]; }
    Unit & operator[](name_id const & id) { return unit_[istr(id.name())]; }

    /// Takes over copies of the other stream's children: one whose name is known here replaces that child's value and
    /// type, all others are added. Children without a name, or named ".", ".." or "/", are always added, which raises
    /// "duplicated unit" when that name is taken.
    stream & combine(stream const & other);

    /// The node as pml, in place of `out`'s content. False for an unknown mode.
    bool toString(String & out, ShowMode mode = ShowMode::FORMATTED) const { return unit_.toString(out, mode); }
    String str(ShowMode mode = ShowMode::FORMATTED) const { return unit_.str(mode); }

private:
    Unit unit_;
    mutable bool input_ = false;
};

/// Appends the node in FORMATTED layout.
YON_API String & operator<<(String & out, stream const & s);
/// Writes the node in COMPACT layout.
YON_API std::ostream & operator<<(std::ostream & os, stream const & s);
/// Copy type and value of the stream's node into a node, and back; names and direction stay.
inline Unit & operator<<(Unit & unit, stream const & s) { return unit << s.unit(); }
inline bool operator>>(Unit const & unit, stream & s) { return unit >> s.unit(); }

namespace detail {

/// A node for a field, registered under the function that writes it.
YON_API std::unique_ptr<Unit> newField(istr name, istr type, char const * func);
YON_API void addField(stream & s, std::unique_ptr<Unit> node);

template <class T>
struct FieldValue {
    using type = std::remove_cv_t<T>;
    static constexpr bool direct = std::same_as<T, type>;
};
template <class T>
struct FieldValue<std::atomic<T>> {
    using type = T;
    static constexpr bool direct = false;
};

template <class T>
constexpr char const * setterOf = "yon::pml::Field__<T>::set";
template <>
inline constexpr char const * setterOf<bool volatile> = "yon::pml::Field__<bool volatile >::set";
template <>
inline constexpr char const * setterOf<String> = "yon::pml::Field__<class yon::String>::set";
template <>
inline constexpr char const * setterOf<unsigned int volatile> = "yon::pml::Field__<unsigned long volatile >::set";
template <>
inline constexpr char const * setterOf<unsigned long volatile> = "yon::pml::Field__<unsigned long volatile >::set";
template <>
inline constexpr char const * setterOf<std::map<String, Bit>> =
    "yon::pml::Field__<class std::map<class yon::String,class yon::Bit> >::set";

}  // namespace detail

/// Binds a variable of the caller's to a name for the length of one expression. Variables may be anything that a node
/// stores: scalars, texts, bytes, times, nodes, the containers of ntv_stl.h; `volatile` and atomic scalars, too.
template <class T>
class Field__ {
public:
    Field__(istr name, T & field, istr type) noexcept : name_(name), type_(type), field_(&field) {}

    /// Adds a node with the variable's value. Raises "duplicated unit" when the name is taken.
    void set(stream & s) const {
        std::unique_ptr<Unit> node = detail::newField(name_, type_, detail::setterOf<T>);
        if constexpr (detail::FieldValue<T>::direct) {
            *node << *field_;
        } else {
            Value const value = *field_;
            *node << value;
        }
        detail::addField(s, std::move(node));
    }
    /// Reads the variable. False, and the variable untouched, when there is no such node or it does not convert.
    bool get(stream const & s) const {
        Unit const * const node = s.child(name_);
        Value value{};
        if (node == nullptr || !(*node >> value)) return false;
        *field_ = std::move(value);
        return true;
    }

private:
    using Value = typename detail::FieldValue<T>::type;

    istr name_;
    istr type_;
    T * field_;
};

/// Binds `variable` to the child of that name; `type` is the type word of the node that is written.
template <class T>
requires(!std::is_const_v<T>) Field__<T> field(istr name, T & variable, istr type = istr())
noexcept { return Field__<T>(name, variable, type); }

/// Writes the variable to an output stream, or reads it from an input stream.
template <class T>
stream & operator&(stream & s, Field__<T> const & f) {
    if (s.isOutputStream()) {
        f.set(s);
    } else {
        f.get(s);
    }
    return s;
}

}  // namespace yon::pml
