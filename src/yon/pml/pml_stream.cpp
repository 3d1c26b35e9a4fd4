#include "yon/pml/pml_stream.h"

#include "yon/pml/ntv_access.h"

namespace yon::pml {

bool stream::from(istr text, bool valueOnly) {
    unit_.clear();
    return valueOnly ? ntvFromValueString(unit_, text) : ntvFromPml(unit_, text);
}

bool stream::from(istr filename, from_file, bool valueOnly) {
    unit_.clear();
    File const file(filename);
    return valueOnly ? ntvFromValueString(unit_, file) : ntvFromPml(unit_, file);
}

Unit const * stream::child(istr name) const { return ntv::detail::Access::child(unit_, name); }

bool stream::empty(istr name) const {
    Unit const * const found = child(name);
    return found == nullptr || found->valueEmpty();
}

Unit const & stream::operator[](istr name) const {
    Unit const * const found = child(name);
    return found != nullptr ? *found : Unit::null();
}

stream & stream::combine(stream const & other) {
    ntv::ListValue const * const list = other.unit_.listValue();
    // The count is taken once: `other` may be this stream.
    std::size_t const count = list != nullptr ? list->data().size() : 0;
    for (std::size_t i = 0; i < count; ++i) {
        Unit const & child = *list->data()[i];
        String const & name = child.name();
        if (name == Unit::path_me || name == Unit::path_parent || name == Unit::path_root) {
            unit_.addChild(child);
        } else {
            unit_.updateChild(child);
        }
    }
    return *this;
}

String & operator<<(String & out, stream const & s) { return out << s.unit(); }

std::ostream & operator<<(std::ostream & os, stream const & s) { return os << s.unit(); }

namespace detail {

namespace {

constexpr char const * streamFile = "include/yon/pml/pml_stream";
constexpr unsigned int fieldLine = 141;

}  // namespace

std::unique_ptr<Unit> newField(istr name, istr type, char const * func) {
    auto node = std::make_unique<Unit>(name);
    node->type(type);
    MemLeakChecker::push(node.get(), streamFile, fieldLine, func, sizeof(Unit));
    return node;
}

void addField(stream & s, std::unique_ptr<Unit> node) {
    s.unit().addChild(node.get());
    static_cast<void>(node.release());
}

}  // namespace detail

namespace ntv::detail {

Unit & output_(Unit & list, istr name) {
    auto node = std::make_unique<Unit>(name);
    MemLeakChecker::push(node.get(), "include/yon/pml/ntv_stl", 107, "yon::pml::ntv::output_", sizeof(Unit));
    list.addChild(node.get());
    return *node.release();
}

Unit emptyList() {
    Unit list;
    Access::setList(list, Slab::local());
    return list;
}

void moveValue(Unit & list, Unit & unit) {
    delete unit.popValue();
    unit.value(list.popValue());
}

bool holdsElements(Unit const & unit) noexcept {
    return unit.listValue() != nullptr || (unit.stringValue() != nullptr && unit.getStringValue().empty());
}

}  // namespace ntv::detail

}  // namespace yon::pml
