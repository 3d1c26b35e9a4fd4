// Walks over trees in memory, which may be deep.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "source.h"
#include "yon/base/text_hash.h"

namespace pmltool {

/// The path step that leads to a child: its name, or "[n]" by its position.
inline std::string keyOf(std::string const & name, std::size_t index) {
    return name.empty() ? '[' + std::to_string(index) + ']' : name;
}
inline std::string keyOf(Unit const & node) { return keyOf(node.name(), node.index()); }

/// Hashes keys, which come from outside, so that no choice of them makes a table slow.
struct KeyHash {
    std::size_t operator()(std::string const & key) const noexcept { return yon::textHash(key, yon::textHashSeed()); }
};
template <class T>
using KeyMap = std::unordered_map<std::string, T, KeyHash>;

/// Calls `visit(node, path)` for a node and all nodes below it, parents first. The path of the first one is given.
template <class Visit>
void forEachNode(Unit const & top, std::string path, Visit visit) {
    struct Step {
        Unit const * node;
        std::size_t parentPath;  ///< how long the parent's path is
    };
    if (path == "/") path.clear();
    visit(top, path.empty() ? std::string("/") : path);
    std::vector<Step> steps;
    auto const addChildren = [&](Unit const & node) {
        if (auto const * list = node.listValue()) {
            for (auto child = list->data().rbegin(); child != list->data().rend(); ++child) {
                steps.push_back({*child, path.size()});
            }
        }
    };
    addChildren(top);
    while (!steps.empty()) {
        Step const step = steps.back();
        steps.pop_back();
        path.resize(step.parentPath);
        (path += '/') += keyOf(*step.node);
        visit(*step.node, path);
        addChildren(*step.node);
    }
}

/// The first node of `a` that differs from the one at the same place of `b`; null when the trees are the same. No
/// value and an empty text count as the same: they are written alike.
Unit const * firstDifference(Unit const & a, Unit const & b);

/// The first node of the tree that is not read back from the text; null when all are.
Unit const * firstLost(Unit const & root, Source const & text);

/// How many nodes of the tree come before a node of it, parents first.
std::size_t numberOf(Unit const & node, Unit const & root);

}  // namespace pmltool
