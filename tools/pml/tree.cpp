#include "tree.h"

#include <utility>

namespace pmltool {

Unit const * firstDifference(Unit const & a, Unit const & b) {
    std::vector<std::pair<Unit const *, Unit const *>> pairs{{&a, &b}};
    while (!pairs.empty()) {
        auto const [x, y] = pairs.back();
        pairs.pop_back();
        auto const * const xs = x->listValue();
        auto const * const ys = y->listValue();
        if (x->name() != y->name() || x->type() != y->type() || !xs != !ys) return x;
        if (xs == nullptr) {
            if (x->getStringValue() != y->getStringValue()) return x;
            continue;
        }
        if (xs->size() != ys->size()) return x;
        for (std::size_t i = xs->size(); i-- != 0;) pairs.emplace_back(xs->data()[i], ys->data()[i]);
    }
    return nullptr;
}

Unit const * firstLost(Unit const & root, Source const & text) {
    Unit read;
    try {
        parse(text, read);
    } catch (BadInput const &) {
        // The node at the error, at the latest, is missing.
    }
    return firstDifference(root, read);
}

std::size_t numberOf(Unit const & node, Unit const & root) {
    std::size_t number = 0;
    for (std::vector<Unit const *> nodes{&root}; nodes.back() != &node; ++number) {
        Unit const * const next = nodes.back();
        nodes.pop_back();
        if (auto const * list = next->listValue()) {
            nodes.insert(nodes.end(), list->data().rbegin(), list->data().rend());
        }
    }
    return number;
}

}  // namespace pmltool
