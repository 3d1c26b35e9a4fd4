// nbr trees of any depth compared and written.
#pragma once

#include <memory>
#include <vector>

#include "yon/nbr/output_stream.h"
#include "yon/nbr/parser.h"

namespace yon::nbr {

/// Calls `visit(tag, value)` for the elements of a value, and those of its complex elements, in order; behind the
/// last element of each complex value `visit(noTag, nullptr)`.
template <class Visit>
void walk(ValueBase const & root, Visit visit) {
    using Place = ComplexValue::Items::const_iterator;
    std::vector<std::pair<Place, Place>> levels;
    auto const enter = [&](unsigned char tag, ValueBase const & value) {
        visit(tag, &value);
        if (auto const * complex = value.complexValue()) levels.emplace_back(complex->begin(), complex->end());
    };
    enter(noTag, root);
    while (!levels.empty()) {
        auto & [next, end] = levels.back();
        if (next == end) {
            levels.pop_back();
            visit(noTag, nullptr);
        } else {
            auto const & item = *next++;
            enter(item.tag, *item.value);
        }
    }
}

/// Writes a value as an application does.
inline void write(OutputStream & out, ValueBase const & root) {
    bool first = true;
    walk(root, [&](unsigned char tag, ValueBase const * value) {
        if (value == nullptr) {
            out.endComplex();
            return;
        }
        if (!first) out.tag(tag);
        first = false;
        if (!value->simple()) {
            out.beginComplex();
        } else if (value->simpleValue()->text()) {
            String text;
            value->simpleValue()->read(text);
            out << text;
        } else {
            out << value->simpleValue()->data();
        }
    });
}

/// The tree as flat text: two trees are equal when their texts are.
inline std::string flat(ValueBase const & root) {
    std::string text;
    walk(root, [&](unsigned char tag, ValueBase const * value) {
        text += static_cast<char>(tag);
        text += value == nullptr ? ')' : !value->simple() ? '(' : value->simpleValue()->text() ? 't' : 'b';
        if (value == nullptr || !value->simple()) return;
        istr const data = value->simpleValue()->data();
        text += std::to_string(data.size()) + ' ' + std::string(std::string_view(data));
    });
    return text;
}

}  // namespace yon::nbr
