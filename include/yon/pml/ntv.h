// The value tree: the form of every pml document in memory.
#pragma once

#include <atomic>
#include <concepts>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <type_traits>
#include <vector>

#include "yon/base/builtin_scalar.h"
#include "yon/base/bytes.h"
#include "yon/base/leak_checker.h"
#include "yon/base/pooled.h"
#include "yon/base/scalars.h"
#include "yon/base/string.h"
#include "yon/base/time.h"
#include "yon/pml/show.h"

namespace yon::pml::ntv {

class Unit;
class ListValue;
class NameIndex;

namespace detail {

struct Access;

/// The built-in scalars that a node stores and yields; not the character types of wide text.
template <class T>
concept Scalar = yon::detail::BuiltinScalar<T>;

/// An index by number, so that `at(0)` and `u[0]` never mean a null text.
template <class T>
concept Index = std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, char>;

}  // namespace detail

/// The value of a node: a text (`StringValue`) or a list of nodes (`ListValue`). Belongs to the node that holds it,
/// or to the caller while no node does. Not copyable: `clone` copies deeply.
class YON_API ValueBase {
public:
    ValueBase() noexcept = default;
    ValueBase(ValueBase const &) = delete;
    ValueBase & operator=(ValueBase const &) = delete;
    virtual ~ValueBase() { MemLeakChecker::pop(this); }

    /// True for a text, false for a list.
    virtual bool single() const = 0;
    /// A deep copy, which the caller owns.
    virtual ValueBase * clone() const = 0;
    virtual std::ostream & dump(std::ostream & os) const = 0;

    /// The node that holds this value, or null.
    Unit * owner() noexcept { return owner_; }
    Unit const * owner() const noexcept { return owner_; }

private:
    friend class Unit;
    friend struct detail::Access;
    Unit * owner_ = nullptr;
};

/// A single text.
class YON_API StringValue final : public ValueBase, public yon::detail::Pooled<StringValue> {
public:
    StringValue() = default;
    explicit StringValue(istr text) : data_(text) {}

    bool single() const override { return true; }
    ValueBase * clone() const override;
    /// Writes the text unchanged.
    std::ostream & dump(std::ostream & os) const override;

    StringValue & assign(istr text) {
        data_ = text;
        return *this;
    }
    StringValue & operator=(istr text) { return assign(text); }
    String const & data() const noexcept { return data_; }

private:
    String data_;
};

/// An ordered list of child nodes, which it owns and deletes.
class YON_API ListValue final : public ValueBase, public yon::detail::Pooled<ListValue> {
public:
    using Children = std::vector<Unit *>;

    ListValue() noexcept = default;
    ~ListValue() override;

    bool single() const override { return false; }
    ValueBase * clone() const override;
    /// Writes each child as formatted pml and an end of line.
    std::ostream & dump(std::ostream & os) const override;

    Children const & data() const noexcept { return data_; }
    Children::const_iterator begin() const noexcept { return data_.begin(); }
    Children::const_iterator end() const noexcept { return data_.end(); }
    bool empty() const noexcept { return data_.empty(); }
    ulong size() const noexcept { return static_cast<ulong>(data_.size()); }

    /// The child at a position; null, and "Index too large: " in the log, beyond the end.
    Unit * at(ulong i) const;
    /// Appends a child, which the list owns from now on, without a look at its name (`Unit::addChild` looks).
    void push_back(Unit * const & child);
    /// Deletes all children and frees the storage.
    void clear() noexcept;

private:
    friend class Unit;
    friend struct detail::Access;

    Unit * find(istr key) const;
    Unit * findNamed(istr name) const;
    bool tryAdd(Unit * child, Unit * owner);
    bool takesName(istr name);
    void append(Unit * child, Unit * owner);
    void checkNames() const;
    void lendName(Unit & child) noexcept;
    void forgetNames() noexcept;
    NameIndex & index() const;

    Children data_;
    /// By name, made at the first look-up in a long list; looked-up lists may be shared between reading threads.
    mutable std::atomic<NameIndex *> index_{nullptr};
    /// Every child came through `tryAdd` with a name that is no index text, and none was renamed since.
    bool plain_ = true;
};

/// A node: a name, a type word, and at most one value.
///
/// A node owns its value, and a list value its children: deleting a root deletes the whole tree, however deep it is.
/// The name of a child is unique among its siblings; an unnamed child answers to "[n]", its position. Functions that
/// enter children raise `std::invalid_argument` "duplicated unit" for a name that is taken. A tree belongs to one
/// thread at a time; threads that only read may share it.
///
///     Unit root("server");
///     root["port"] << 8080;
///     int port = 0;
///     if (root["port"] >> port) ...
class YON_API Unit : public yon::detail::Pooled<Unit> {
public:
    static String const path_root;         ///< "/"
    static String const path_parent;       ///< ".."
    static String const path_me;           ///< "."
    static String const path_separator;    ///< "/"
    static String const path_index_left;   ///< "["
    static String const path_index_right;  ///< "]"

    explicit Unit(Unit * parent = nullptr) noexcept : parent_(parent) {}
    explicit Unit(std::nullptr_t) noexcept {}
    explicit Unit(istr name, Unit * parent = nullptr) : name_(name), parent_(parent) {}
    /// Takes the value.
    explicit Unit(ValueBase * value, Unit * parent = nullptr);
    Unit(istr name, istr type, ValueBase * value, Unit * parent = nullptr);
    Unit(istr name, istr type, istr value, Unit * parent = nullptr);
    /// Copies name, type and value; the copy has no parent.
    Unit(Unit const & o);
    /// Takes name, type and value and leaves the other one empty.
    Unit(Unit && o) noexcept;
    /// Copies name, type and value; parent and position stay. `o` may be a part of this tree.
    Unit & operator=(Unit const & o);
    Unit & operator=(Unit && o) noexcept;
    /// Copies type and value only.
    Unit & operator<<(Unit const & o);
    bool operator>>(Unit & o) const;
    ~Unit();

    /// The shared empty node, the "not found" of the reading `operator[]`. Safe from any thread at any time.
    static Unit const & null() noexcept;

    /// Empties the node and detaches it from its parent.
    void clear() noexcept;

    /// The name to be changed. The parent finds the node by the new name if that is written before the next look-up.
    String & name() noexcept;
    String const & name() const noexcept { return name_; }
    Unit & name(istr name);
    String const & type() const noexcept { return type_ != nullptr ? *type_ : String::null(); }
    Unit & type(istr type);
    ValueBase * value() const noexcept { return value_; }
    /// Takes a value. The pointer to the old one is overwritten, not deleted: take it out first with `popValue`.
    Unit & value(ValueBase * value);
    Unit & value(istr text) { return setValue(text); }
    /// Stores a text; a list that was there is deleted. The text may lie in this tree.
    Unit & setValue(istr text);
    /// Gives the value to the caller and leaves none.
    ValueBase * popValue() noexcept;

    Unit * parent() const noexcept { return parent_; }
    Unit & parent(Unit * parent) noexcept;
    /// The position in the parent's list.
    ulong index() const noexcept { return index_; }
    Unit & index(ulong index) noexcept {
        index_ = index;
        return *this;
    }
    Unit * root() const noexcept;

    /// The value when it is of that kind; otherwise false, and null in `value`.
    bool getValue(StringValue *& value) const noexcept;
    bool getValue(ListValue *& value) const noexcept;
    StringValue * stringValue() const noexcept;
    ListValue * listValue() const noexcept;
    /// The text; an empty view for no value or a list.
    istr getStringValue() const noexcept;

    /// No name, no type, no value.
    bool empty() const noexcept { return name_.empty() && type_ == nullptr && value_ == nullptr; }
    /// No value, or an empty text; false for every list.
    bool valueEmpty() const noexcept;
    ulong numofChildren() const noexcept;

    /// Takes a child and appends it; a text value becomes the first, unnamed element of the list. False for null.
    /// A child that is refused with "duplicated unit" stays the caller's.
    bool addChild(Unit * child);
    bool addChild(istr name, istr type, istr value);
    bool addChild(istr name, istr value) { return addChild(name, istr(), value); }
    /// Adds a copy.
    bool addChild(Unit const & child);
    /// Adds copies of all children of `o`, in order.
    Unit & operator+=(Unit const & o);
    /// As `addChild`; where a child of that name exists it is assigned from the new one, which is then deleted, and
    /// the result is false.
    bool addOrUpdateChild(Unit * child);
    bool updateChild(istr name, istr type, istr value);
    bool updateChild(istr name, istr value) { return updateChild(name, istr(), value); }
    bool updateChild(Unit const & child);

    /// One step of a path: "" and "." are this node, "/" the root, ".." the parent, anything else a child by name or
    /// "[n]". Null when there is none.
    Unit * at(istr step) const;
    Unit * at(char const * begin, char const * end) const { return at(range(begin, end)); }
    Unit * at(unsigned char const * begin, unsigned char const * end) const { return at(range(begin, end)); }
    /// The child of that name, created and added when there is none.
    Unit * at(istr name);
    /// The child at a position; null, and an error in the log, when there is none.
    template <detail::Index I>
    Unit * at(I i) const {
        return child(static_cast<ulong>(i));
    }
    template <detail::Index I>
    Unit * at(I i) {
        return child(static_cast<ulong>(i));
    }
    Unit & operator[](istr name) { return *at(name); }
    Unit const & operator[](istr step) const { return orNull(at(step)); }
    template <detail::Index I>
    Unit const & operator[](I i) const {
        return orNull(at(i));
    }
    template <detail::Index I>
    Unit const & operator[](I i) {
        return orNull(at(i));
    }
    /// A node by its path: steps joined by "/", each with any number of "[n]" behind it; from the root when it
    /// begins with "/". Null when there is none.
    Unit * find(istr path) const;
    /// Resolves `name` as the reading `at` and copies the text of that node (empty for a list).
    bool getChild(istr name, String & text) const;
    /// "/" for a root, otherwise the names (or "[n]") from below the root down to this node, each after a "/".
    String path() const;

    /// Whether following only children ends at no value, a text or an empty list.
    bool childWasSingle() const noexcept;
    /// Whether the value is a list of at least two elements without names and with types.
    bool childrenWereUnnamedList() const noexcept;

    /// Store a value as text; the type word stays, but for bytes ("base64"). Numbers are written as a classic-locale
    /// stream writes them, characters as themselves, the wrappers of scalars as numbers, wide text in the system
    /// code page, times as microseconds.
    template <detail::Scalar T>
    Unit & operator<<(T value);
    template <class W>
    requires ScalarWrapper<W> Unit & operator<<(W const & value);
    Unit & operator<<(istr text) { return setValue(text); }
    Unit & operator<<(iwstr text);
    Unit & operator<<(Bytes const & bytes);
    Unit & operator<<(Time const & time);

    /// Parse the text into the target, as a classic-locale stream would. False, and the target untouched, when there
    /// is no text or it does not parse; only a `Time` is then set to zero.
    template <detail::Scalar T>
    bool operator>>(T & value) const;
    template <detail::Scalar T>
    bool operator>>(T volatile & value) const;
    template <class W>
    requires ScalarWrapper<W>
    bool operator>>(W & value) const;
    bool operator>>(String & text) const;
    bool operator>>(std::string & text) const;
    bool operator>>(wstring & text) const;
    bool operator>>(Bytes & bytes) const;
    bool operator>>(Time & time) const;

    /// The node as pml, in place of `out`'s content. False for an unknown mode.
    bool toString(String & out, ShowMode mode = ShowMode::FORMATTED) const;
    String str(ShowMode mode = ShowMode::FORMATTED) const;

private:
    friend class ListValue;
    friend struct detail::Access;

    enum class Kind : std::uint8_t { none, text, list, other };

    template <class C>
    static istr range(C const * begin, C const * end) noexcept {
        return istr(begin, begin < end ? toLength(static_cast<std::size_t>(end - begin)) : 0);
    }
    static Unit const & orNull(Unit const * unit) noexcept { return unit != nullptr ? *unit : null(); }
    static Kind kindOf(ValueBase const * value) noexcept;

    Unit * child(ulong i) const;
    void clearValue() noexcept;
    void setValueOwner() noexcept;
    void initChildrenMap();
    void setType(istr type);
    void freeType() noexcept;
    void renamed() noexcept;
    void adopt(ValueBase * value) noexcept;
    ListValue & makeList();
    template <class T>
    bool extract(T & value) const;
    Unit & setSigned(longlong value);
    Unit & setUnsigned(ulonglong value);
    Unit & setFloating(double value);

    String name_;
    String const * type_ = nullptr;  ///< null when empty; shared between nodes, or owned when `ownsType_`
    ValueBase * value_ = nullptr;
    Unit * parent_ = nullptr;
    ulong index_ = 0;
    Kind kind_ = Kind::none;
    bool ownsType_ = false;
    bool listed_ = false;    ///< stands in the list of `parent_`
    bool nameLent_ = false;  ///< the list's index will look at the name again
};

template <detail::Scalar T>
Unit & Unit::operator<<(T value) {
    if constexpr (std::same_as<T, char> || std::same_as<T, signed char> || std::same_as<T, unsigned char>) {
        char const c = static_cast<char>(value);
        return setValue(istr(&c, 1));
    } else if constexpr (std::floating_point<T>) {
        return setFloating(static_cast<double>(value));
    } else if constexpr (std::signed_integral<T>) {
        return setSigned(value);
    } else {
        return setUnsigned(value);
    }
}

template <class W>
requires ScalarWrapper<W> Unit & Unit::operator<<(W const & value) {
    if constexpr (sizeof(value.value()) == 1) {
        return *this << static_cast<int>(value.value());
    } else {
        return *this << value.value();
    }
}

template <detail::Scalar T>
bool Unit::operator>>(T & value) const {
    T parsed{};
    if (!extract(parsed)) return false;
    value = parsed;
    return true;
}

template <detail::Scalar T>
bool Unit::operator>>(T volatile & value) const {
    T parsed{};
    if (!extract(parsed)) return false;
    value = parsed;
    return true;
}

template <class W>
requires ScalarWrapper<W>
bool Unit::operator>>(W & value) const {
    typename W::parsed_type parsed{};
    if (!extract(parsed)) return false;
    using V = typename W::value_type;
    value = static_cast<V>(parsed);
    return true;
}

/// Writes the node in COMPACT layout.
YON_API std::ostream & operator<<(std::ostream & os, Unit const & unit);
/// Appends the node in FORMATTED layout.
YON_API String & operator<<(String & out, Unit const & unit);

}  // namespace yon::pml::ntv

namespace yon::pml {

using ntv::Unit;

/// Stores the layout by name.
YON_API Unit & operator<<(Unit & unit, ShowMode const & mode);
/// Stores the mask as a number.
YON_API Unit & operator<<(Unit & unit, ShowPattern const & pattern);

}  // namespace yon::pml
