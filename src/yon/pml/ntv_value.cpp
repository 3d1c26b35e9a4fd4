#include <algorithm>
#include <charconv>
#include <ostream>
#include <stdexcept>

#include "yon/base/diagnostics.h"
#include "yon/pml/name_index.h"
#include "yon/pml/ntv_access.h"
#include "yon/pml/pml_writer.h"

namespace yon::pml::ntv {

namespace {

/// Longer lists are searched through an index.
constexpr std::size_t longList = 12;

/// Whether `key` is the text of a position, "[" and a decimal number without leading zeros and "]".
bool isIndexText(istr key, ulong & index) noexcept {
    if (key.size() < 3 || key[0] != '[' || key[key.size() - 1] != ']') return false;
    char const * const begin = key.begin() + 1;
    char const * const end = key.end() - 1;
    if (*begin == '0' && end - begin > 1) return false;
    auto const r = std::from_chars(begin, end, index);
    return r.ec == std::errc() && r.ptr == end;
}

}  // namespace

ValueBase * StringValue::clone() const {
    return make<StringValue>(Slab::local(), __LINE__, "yon::pml::ntv::StringValue::clone", data_);
}

std::ostream & StringValue::dump(std::ostream & os) const {
    return os.write(data_.data(), static_cast<std::streamsize>(data_.size()));
}

ListValue::~ListValue() { clear(); }

ValueBase * ListValue::clone() const {
    Unit holder;
    detail::Access::copyList(holder, *this);
    return holder.popValue();
}

std::ostream & ListValue::dump(std::ostream & os) const {
    for (Unit const * child : data_) {
        ntvToFormattedPml(*child, os, ShowPattern::usual);
        os << std::endl;
    }
    return os;
}

Unit * ListValue::at(ulong i) const {
    if (i < data_.size()) return data_[i];
    String message("Index too large: ");
    message += std::to_string(i);
    diagnostics::record(diagnostics::Level::error, "<ERROR>", {sourceFile, __LINE__, "yon::pml::ntv::ListValue::at"},
                        message);
    return nullptr;
}

void ListValue::push_back(Unit * const & child) {
    data_.push_back(child);
    plain_ = false;
    if (NameIndex * const known = index_.load(std::memory_order_relaxed)) known->catchUp(data_);
}

void ListValue::clear() noexcept {
    forgetNames();
    if (!data_.empty()) detail::Access::destroy(data_);
    Children().swap(data_);
    plain_ = true;
}

/// The child with that key: its position when it is unnamed, otherwise its name.
Unit * ListValue::find(istr key) const {
    ulong i = 0;
    if (!key.empty() && key[0] == '[' && isIndexText(key, i) && i < data_.size() && data_[i]->name_.empty()) {
        return data_[i];
    }
    return findNamed(key);
}

Unit * ListValue::findNamed(istr name) const {
    if (name.empty()) return nullptr;
    if (data_.size() > longList) {
        ulong const i = index().lookUp(data_, name);
        return i != npos ? data_[i] : nullptr;
    }
    for (Unit * child : data_) {
        String const & other = child->name_;
        // The first character spares most calls of memcmp.
        if (other.size() == name.size() && other[0] == name[0] && other == name) return child;
    }
    return nullptr;
}

/// Appends a child, unless its key is taken.
bool ListValue::tryAdd(Unit * child, Unit * owner) {
    auto const position = static_cast<ulong>(data_.size());
    // Room first: once its name is entered, the child must get in.
    if (data_.size() == data_.capacity()) data_.reserve(data_.size() < 4 ? 4 : data_.size() * 2);
    if (!child->name_.empty()) {
        if (!takesName(child->name_)) return false;
    } else if (!plain_) {
        String key("[");
        (key += std::to_string(position)) += ']';
        if (findNamed(key) != nullptr) return false;
    }
    append(child, owner);
    if (NameIndex * const known = index_.load(std::memory_order_relaxed)) known->catchUp(data_);
    return true;
}

void ListValue::append(Unit * child, Unit * owner) {
    data_.push_back(child);
    child->parent_ = owner;
    child->index_ = static_cast<ulong>(data_.size() - 1);
    child->listed_ = true;
}

/// Enters the name of the next child. False when it is taken.
bool ListValue::takesName(istr name) {
    if (name[0] == '[') {
        if (find(name) != nullptr) return false;
        plain_ = false;
    }
    if (data_.size() > longList) return index().insert(data_, name, static_cast<ulong>(data_.size()));
    return findNamed(name) == nullptr;
}

/// Raises "duplicated unit" when two children have the same key.
void ListValue::checkNames() const {
    if (plain_) return;
    NameIndex names;
    bool twins = names.catchUp(data_) != npos;
    for (std::size_t i = 0; i < data_.size() && !twins; ++i) {
        ulong position = 0;
        twins = isIndexText(data_[i]->name_, position) && position < data_.size() && data_[position]->name_.empty();
    }
    if (twins) throw std::invalid_argument("duplicated unit");
}

/// The name of a child may be about to change.
void ListValue::lendName(Unit & child) noexcept {
    plain_ = false;
    NameIndex * const known = index_.load(std::memory_order_relaxed);
    if (known == nullptr || child.nameLent_) return;
    bool const inPlace = child.index_ < data_.size() && data_[child.index_] == &child;
    if (inPlace && known->lend(child.index_)) {
        child.nameLent_ = true;
    } else {
        forgetNames();
    }
}

/// Drops the index.
void ListValue::forgetNames() noexcept {
    plain_ = false;
    NameIndex * const known = index_.exchange(nullptr, std::memory_order_relaxed);
    if (known == nullptr) return;
    for (ulong position : known->lent()) {
        if (position < data_.size()) data_[position]->nameLent_ = false;
    }
    delete known;
}

/// The index, made now when there is none. Of threads that make it at once the first one wins.
NameIndex & ListValue::index() const {
    NameIndex * known = index_.load(std::memory_order_acquire);
    if (known != nullptr) return *known;
    auto fresh = std::make_unique<NameIndex>();
    fresh->catchUp(data_);
    if (index_.compare_exchange_strong(known, fresh.get(), std::memory_order_acq_rel)) return *fresh.release();
    return *known;
}

}  // namespace yon::pml::ntv
