#include "yon/pml/ntv.h"

#include <stdexcept>
#include <utility>

#include "yon/base/diagnostics.h"
#include "yon/base/made_once.h"
#include "yon/pml/ntv_access.h"
#include "yon/pml/type_words.h"

namespace yon::pml::ntv {

Unit::Unit(ValueBase * value, Unit * parent) : Unit(parent) { this->value(value); }

Unit::Unit(istr name, istr type, ValueBase * value, Unit * parent) : Unit(name, parent) {
    setType(type);
    this->value(value);
}

Unit::Unit(istr name, istr type, istr value, Unit * parent) : Unit(name, parent) {
    setType(type);
    detail::Access::setText(*this, Slab::local(), value);
}

Unit::Unit(Unit const & o) : Unit(istr(o.name_)) {
    setType(o.type());
    detail::Access::copyValue(*this, o);
}

Unit::Unit(Unit && o) noexcept : Unit() { *this = std::move(o); }

Unit & Unit::operator=(Unit const & o) {
    if (this == &o) return *this;
    Unit copy(o);
    return *this = std::move(copy);
}

Unit & Unit::operator=(Unit && o) noexcept {
    if (this == &o) return *this;
    // Out of the other one first: it may stand below this node.
    String name = std::move(o.name_);
    String const * const type = std::exchange(o.type_, nullptr);
    bool const ownsType = std::exchange(o.ownsType_, false);
    o.renamed();
    o.name_.clear();
    ValueBase * const value = o.popValue();
    freeType();
    clearValue();
    renamed();
    name_ = std::move(name);
    type_ = type;
    ownsType_ = ownsType;
    adopt(value);
    return *this;
}

Unit & Unit::operator<<(Unit const & o) {
    if (this == &o) return *this;
    Unit copy(o);
    copy.name_ = name_;
    return *this = std::move(copy);
}

bool Unit::operator>>(Unit & o) const {
    o << *this;
    return true;
}

Unit::~Unit() {
    MemLeakChecker::pop(this);
    clearValue();
    freeType();
}

Unit const & Unit::null() noexcept {
    static constinit MadeOnce<Unit> shared;
    return shared.get();
}

void Unit::clear() noexcept {
    renamed();
    name_.clear();
    freeType();
    clearValue();
    parent(nullptr);
    index_ = 0;
}

String & Unit::name() noexcept {
    renamed();
    return name_;
}

Unit & Unit::name(istr name) {
    renamed();
    name_ = name;
    return *this;
}

Unit & Unit::type(istr type) {
    setType(type);
    return *this;
}

Unit & Unit::value(ValueBase * value) {
    adopt(value);
    initChildrenMap();
    return *this;
}

Unit & Unit::setValue(istr text) {
    if (kind_ == Kind::text) {
        static_cast<StringValue *>(value_)->assign(text);
        return *this;
    }
    // The text may lie in the value that goes.
    Unit fresh;
    detail::Access::setText(fresh, Slab::local(), text);
    clearValue();
    adopt(fresh.popValue());
    return *this;
}

ValueBase * Unit::popValue() noexcept {
    ValueBase * const value = std::exchange(value_, nullptr);
    if (value != nullptr) value->owner_ = nullptr;
    if (kind_ == Kind::list) {
        for (Unit * child : static_cast<ListValue *>(value)->data_) {
            if (child != nullptr) child->parent(nullptr);
        }
    }
    kind_ = Kind::none;
    return value;
}

Unit & Unit::parent(Unit * parent) noexcept {
    parent_ = parent;
    listed_ = false;
    return *this;
}

Unit * Unit::root() const noexcept {
    Unit const * unit = this;
    while (unit->parent_ != nullptr) unit = unit->parent_;
    return const_cast<Unit *>(unit);
}

bool Unit::getValue(StringValue *& value) const noexcept {
    value = stringValue();
    return value != nullptr;
}

bool Unit::getValue(ListValue *& value) const noexcept {
    value = listValue();
    return value != nullptr;
}

StringValue * Unit::stringValue() const noexcept {
    return kind_ == Kind::text ? static_cast<StringValue *>(value_) : nullptr;
}

ListValue * Unit::listValue() const noexcept {
    return kind_ == Kind::list ? static_cast<ListValue *>(value_) : nullptr;
}

istr Unit::getStringValue() const noexcept {
    StringValue const * const text = stringValue();
    return text != nullptr ? istr(text->data()) : istr();
}

bool Unit::valueEmpty() const noexcept {
    if (kind_ == Kind::text) return stringValue()->data().empty();
    return value_ == nullptr;
}

ulong Unit::numofChildren() const noexcept {
    ListValue const * const list = listValue();
    return list != nullptr ? list->size() : 0;
}

bool Unit::addChild(Unit * child) {
    if (child == nullptr || child == this) return false;
    if (!makeList().tryAdd(child, this)) throw std::invalid_argument("duplicated unit");
    return true;
}

namespace {

/// Hands a fresh node over with `take`; deletes it when it is refused.
template <class Take, class... Args>
bool handOver(Take take, unsigned int line, char const * func, Args &&... args) {
    std::unique_ptr<Unit> fresh(make<Unit>(Slab::local(), line, func, std::forward<Args>(args)...));
    bool const taken = take(fresh.get());
    static_cast<void>(fresh.release());
    return taken;
}

}  // namespace

bool Unit::addChild(istr name, istr type, istr value) {
    return handOver([this](Unit * u) { return addChild(u); }, __LINE__, "yon::pml::ntv::Unit::addChild", name, type,
                    value);
}

bool Unit::addChild(Unit const & child) {
    return handOver([this](Unit * u) { return addChild(u); }, __LINE__, "yon::pml::ntv::Unit::addChild", child);
}

Unit & Unit::operator+=(Unit const & o) {
    ListValue const * const list = o.listValue();
    // The count is taken once: `o` may be this node.
    std::size_t const count = list != nullptr ? list->data().size() : 0;
    for (std::size_t i = 0; i < count; ++i) addChild(*list->data()[i]);
    return *this;
}

bool Unit::addOrUpdateChild(Unit * child) {
    if (child == nullptr) return false;
    ListValue const * const list = listValue();
    Unit * const known = list != nullptr && !child->name_.empty() ? list->find(child->name_) : nullptr;
    if (known == nullptr) return addChild(child);
    if (known != child) {
        *known = std::move(*child);
        delete child;
    }
    return false;
}

bool Unit::updateChild(istr name, istr type, istr value) {
    return handOver([this](Unit * u) { return addOrUpdateChild(u); }, __LINE__, "yon::pml::ntv::Unit::updateChild",
                    name, type, value);
}

bool Unit::updateChild(Unit const & child) {
    return handOver([this](Unit * u) { return addOrUpdateChild(u); }, __LINE__, "yon::pml::ntv::Unit::updateChild",
                    child);
}

bool Unit::childWasSingle() const noexcept {
    for (Unit const * unit = this;;) {
        ListValue const * const list = unit->listValue();
        if (list == nullptr || list->empty()) return true;
        if (list->size() > 1) return false;
        unit = list->data().front();
    }
}

bool Unit::childrenWereUnnamedList() const noexcept {
    ListValue const * const list = listValue();
    if (list == nullptr || list->size() < 2) return false;
    for (Unit const * child : *list) {
        if (!child->name_.empty() || child->type_ == nullptr) return false;
    }
    return true;
}

Unit::Kind Unit::kindOf(ValueBase const * value) noexcept {
    if (value == nullptr) return Kind::none;
    if (dynamic_cast<StringValue const *>(value) != nullptr) return Kind::text;
    if (dynamic_cast<ListValue const *>(value) != nullptr) return Kind::list;
    return Kind::other;
}

void Unit::clearValue() noexcept {
    if (value_ != nullptr) detail::Access::destroyValue(Slab::local(), value_, kind_);
    value_ = nullptr;
    kind_ = Kind::none;
}

void Unit::setValueOwner() noexcept {
    if (value_ != nullptr) value_->owner_ = this;
}

/// A list that came with the value is checked for names that stand twice.
void Unit::initChildrenMap() {
    if (kind_ == Kind::list) static_cast<ListValue *>(value_)->checkNames();
}

void Unit::setType(istr type) {
    String const * const shared = type.empty() ? nullptr : sharedTypeWord(type);
    String const * const own = type.empty() || shared != nullptr ? nullptr : new String(type);
    freeType();
    type_ = own != nullptr ? own : shared;
    ownsType_ = own != nullptr;
}

void Unit::freeType() noexcept {
    if (ownsType_) delete type_;
    type_ = nullptr;
    ownsType_ = false;
}

/// The name is about to change: what the parent's list knows of it will be stale.
void Unit::renamed() noexcept {
    if (listed_ && parent_ != nullptr && parent_->kind_ == Kind::list) {
        static_cast<ListValue *>(parent_->value_)->lendName(*this);
    }
}

/// Takes the value as it is and links it and its children to this node.
void Unit::adopt(ValueBase * value) noexcept {
    value_ = value;
    kind_ = kindOf(value);
    setValueOwner();
    if (kind_ != Kind::list) return;
    ulong i = 0;
    for (Unit * child : static_cast<ListValue *>(value)->data_) {
        child->parent_ = this;
        child->index_ = i++;
        child->listed_ = true;
    }
}

/// The list of this node, made when there is none; another value becomes its first, unnamed element.
ListValue & Unit::makeList() {
    if (kind_ == Kind::list) return *static_cast<ListValue *>(value_);
    Slab & slab = Slab::local();
    constexpr char const * func = "yon::pml::ntv::Unit::addChild";
    auto list = std::unique_ptr<ListValue>(make<ListValue>(slab, __LINE__, func));
    if (value_ != nullptr) {
        auto first = std::unique_ptr<Unit>(make<Unit>(slab, __LINE__, func));
        list->tryAdd(first.get(), this);
        first.release()->adopt(popValue());
    }
    adopt(list.release());
    return *static_cast<ListValue *>(value_);
}

namespace detail {

void Access::setText(Unit & unit, Slab & slab, istr text) {
    auto * const value = make<StringValue>(slab, __LINE__, "yon::pml::ntv::Unit::setValue", text);
    value->owner_ = &unit;
    unit.value_ = value;
    unit.kind_ = Unit::Kind::text;
}

ListValue & Access::setList(Unit & unit, Slab & slab) {
    auto * const list = make<ListValue>(slab, __LINE__, "yon::pml::pmlParserBase::__doParser");
    list->owner_ = &unit;
    unit.value_ = list;
    unit.kind_ = Unit::Kind::list;
    return *list;
}

namespace {

/// A list that is still to be copied into a node.
struct CopyJob {
    ListValue const * from;
    Unit * to;
};

}  // namespace

void Access::copyValue(Unit & to, Unit const & from) {
    if (from.kind_ == Unit::Kind::list) {
        copyList(to, *static_cast<ListValue const *>(from.value_));
    } else if (from.kind_ == Unit::Kind::text) {
        setText(to, Slab::local(), static_cast<StringValue const *>(from.value_)->data());
    } else if (from.value_ != nullptr) {
        to.adopt(from.value_->clone());
    }
}

void Access::copyList(Unit & to, ListValue const & from) {
    Slab & slab = Slab::local();
    std::vector<CopyJob> jobs{{&from, &to}};
    while (!jobs.empty()) {
        CopyJob const job = jobs.back();
        jobs.pop_back();
        job.from->checkNames();
        ListValue & list = setList(*job.to, slab);
        list.data_.reserve(job.from->data_.size());
        list.plain_ = job.from->plain_;
        for (Unit const * child : job.from->data_) {
            Unit * const copy = make<Unit>(slab, __LINE__, "yon::pml::ntv::Unit::Unit", istr(child->name_));
            list.append(copy, job.to);
            copy->setType(child->type());
            if (child->kind_ == Unit::Kind::list) {
                jobs.push_back({static_cast<ListValue const *>(child->value_), copy});
            } else {
                copyValue(*copy, *child);
            }
        }
    }
}

void Access::destroy(ListValue::Children & units) noexcept {
    Slab & slab = Slab::local();
    // From the last node to the first, against the order in which a parser makes them: so the pool hands the blocks
    // out in their old order again, and the next tree lies as well in memory. The way back up stands in the parents:
    // no recursion, and no memory that could run out.
    Unit * above = nullptr;
    ListValue::Children * list = &units;
    for (;;) {
        while (!list->empty()) {
            Unit * const unit = list->back();
            if (unit != nullptr && unit->numofChildren() != 0) {
                unit->parent_ = above;
                above = unit;
                list = &static_cast<ListValue *>(unit->value_)->data_;
            } else {
                list->pop_back();
                if (unit != nullptr) destroyNode(slab, unit);
            }
        }
        if (above == nullptr) return;
        above = above->parent_;
        list = above != nullptr ? &static_cast<ListValue *>(above->value_)->data_ : &units;
    }
}

void Access::destroyNode(Slab & slab, Unit * unit) noexcept {
    if (unit->value_ != nullptr) destroyValue(slab, unit->value_, unit->kind_);
    unit->value_ = nullptr;
    unit->~Unit();
    slab.release(unit, sizeof(Unit));
}

void Access::destroyValue(Slab & slab, ValueBase * value, Unit::Kind kind) noexcept {
    if (kind == Unit::Kind::text) {
        static_cast<StringValue *>(value)->~StringValue();
        slab.release(value, sizeof(StringValue));
    } else if (kind == Unit::Kind::list) {
        static_cast<ListValue *>(value)->~ListValue();
        slab.release(value, sizeof(ListValue));
    } else {
        delete value;
    }
}

}  // namespace detail

}  // namespace yon::pml::ntv
