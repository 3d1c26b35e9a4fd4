#include <algorithm>
#include <ostream>
#include <vector>

#include "commands.h"
#include "tree.h"
#include "visible.h"

namespace pmltool {

namespace {

/// Compares two trees node by node: children of the same name, or the same "[n]", belong together.
class Comparison {
public:
    explicit Comparison(std::ostream & out) noexcept : out_(out) {}

    bool differ(Unit const & left, Unit const & right) {
        if (left.name() != right.name()) {
            printChild('-', left);
            printChild('+', right);
        }
        pairs_.push_back({&left, &right, 0});
        while (!pairs_.empty()) {
            Pair const pair = pairs_.back();
            pairs_.pop_back();
            path_.resize(pair.parentPath);
            if (pair.left != &left) (path_ += '/') += keyOf(*pair.left);
            compare(*pair.left, *pair.right);
        }
        return different_;
    }

private:
    struct Pair {
        Unit const * left;
        Unit const * right;
        std::size_t parentPath;  ///< how long the parent's path is
    };

    void compare(Unit const & left, Unit const & right) {
        auto const * const lefts = left.listValue();
        auto const * const rights = right.listValue();
        bool const sameText = left.getStringValue() == right.getStringValue();
        if (left.type() != right.type() || !lefts != !rights || !sameText) {
            print('-', left);
            print('+', right);
        }
        if (lefts != nullptr && rights != nullptr) compareChildren(lefts->data(), rights->data());
    }

    using Children = std::vector<Unit *>;

    /// Prints the children that only one side has, and leaves the pairs for later.
    void compareChildren(Children const & lefts, Children const & rights) {
        KeyMap<Unit const *> partners;
        for (Unit const * right : rights) partners.emplace(keyOf(*right), right);
        std::size_t const known = pairs_.size();
        for (Unit const * left : lefts) {
            auto const partner = partners.find(keyOf(*left));
            if (partner == partners.end()) {
                printChild('-', *left);
            } else {
                pairs_.push_back({left, partner->second, path_.size()});
                partners.erase(partner);
            }
        }
        std::reverse(pairs_.begin() + static_cast<std::ptrdiff_t>(known), pairs_.end());
        for (Unit const * right : rights) {
            if (partners.contains(keyOf(*right))) printChild('+', *right);
        }
    }

    void print(char side, Unit const & node) {
        different_ = true;
        out_ << side << ' ' << (path_.empty() ? "/" : shortPath(path_)) << typeSuffix(node) << ' ' << valueText(node)
             << '\n';
    }

    void printChild(char side, Unit const & node) {
        std::size_t const length = path_.size();
        (path_ += '/') += keyOf(node);
        print(side, node);
        path_.resize(length);
    }

    std::ostream & out_;
    std::vector<Pair> pairs_;  ///< still to be compared
    std::string path_;
    bool different_ = false;
};

}  // namespace

int diff(DiffArguments const & arguments, Console & console) {
    Unit left;
    Unit right;
    parse(readSource(arguments.left, console), left);
    parse(readSource(arguments.right, console), right);
    return Comparison(console.out).differ(left, right) ? bad : ok;
}

}  // namespace pmltool
