// Paths: from a node to others, and back to text.

#include <algorithm>
#include <charconv>
#include <vector>

#include "yon/base/diagnostics.h"
#include "yon/pml/ntv_access.h"

namespace yon::pml::ntv {

// Made before any other static object, so that static constructors may use them.
#define YON_FIRST __attribute__((init_priority(101)))
YON_FIRST String const Unit::path_root("/");
YON_FIRST String const Unit::path_parent("..");
YON_FIRST String const Unit::path_me(".");
YON_FIRST String const Unit::path_separator("/");
YON_FIRST String const Unit::path_index_left("[");
YON_FIRST String const Unit::path_index_right("]");
#undef YON_FIRST

Unit * Unit::at(istr step) const {
    if (step.empty() || step == path_me) return const_cast<Unit *>(this);
    if (step == path_root) return root();
    if (step == path_parent) return parent_;
    ListValue const * const list = listValue();
    return list != nullptr ? list->find(step) : nullptr;
}

Unit * Unit::at(istr name) {
    ListValue const * const list = listValue();
    if (Unit * const known = list != nullptr ? list->find(name) : nullptr) return known;
    addChild(name, istr(), istr());
    Unit * const added = listValue()->data().back();
    added->clearValue();
    return added;
}

Unit * Unit::child(ulong i) const {
    if (ListValue const * const list = listValue()) return list->at(i);
    diagnostics::record(diagnostics::Level::error, "<ERROR>", {sourceFile, __LINE__, "yon::pml::ntv::Unit::at"},
                        "Value was not a list.");
    return nullptr;
}

Unit * Unit::find(istr path) const {
    Unit const * unit = this;
    char const * p = path.begin();
    char const * const end = path.end();
    if (p != end && *p == '/') {
        unit = root();
        ++p;
    }
    char const * step = p;
    while (p != end && unit != nullptr) {
        if (*p == '/') {
            unit = unit->at(step, p);
            step = ++p;
        } else if (*p == '[') {
            unit = unit->at(step, p);
            ulong i = 0;
            auto const number = std::from_chars(p + 1, end, i);
            if (unit == nullptr || number.ec != std::errc() || number.ptr == end || *number.ptr != ']')
                return nullptr;
            unit = unit->child(i);
            step = p = number.ptr + 1;
        } else {
            ++p;
        }
    }
    return unit != nullptr ? unit->at(step, end) : nullptr;
}

bool Unit::getChild(istr name, String & text) const {
    Unit const * const child = at(name);
    if (child == nullptr) return false;
    text = child->getStringValue();
    return true;
}

String Unit::path() const {
    std::vector<Unit const *> chain;
    for (Unit const * unit = this; unit->parent_ != nullptr; unit = unit->parent_) chain.push_back(unit);
    if (chain.empty()) return path_root;
    String path;
    for (auto unit = chain.rbegin(); unit != chain.rend(); ++unit) {
        path += path_separator;
        if ((*unit)->name_.empty()) {
            path += path_index_left;
            path += std::to_string((*unit)->index_);
            path += path_index_right;
        } else {
            path += (*unit)->name_;
        }
    }
    return path;
}

}  // namespace yon::pml::ntv
