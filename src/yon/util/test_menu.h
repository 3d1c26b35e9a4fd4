// The menus of a test program, walked from the keyboard.
#pragma once

#include <vector>

#include "yon/util/test.h"

namespace yon::test {

/// Whether a path is that of a menu or case, or lies below it. Everything lies below the empty one.
bool liesWithin(istr path, istr where);

/// Where the keyboard is among the cases, which must outlive the menu.
class Menu {
public:
    explicit Menu(std::vector<Case const *> cases) : cases_(std::move(cases)) {}

    String prompt() const { return "test" + (where_.empty() ? String() : "/" + where_) + "> "; }
    /// The entries of this menu, numbered, and what else may be typed.
    String text() const;
    /// Takes what was typed: goes into a menu or back, or gives the path of what is to be run; empty if nothing is.
    String choose(istr line);
    /// "q" was typed.
    bool left() const noexcept { return left_; }

private:
    /// Submenus with a "/" behind them, and cases, in the order of registration.
    std::vector<String> entries() const;
    String below(istr entry) const;

    std::vector<Case const *> cases_;
    String where_;
    bool left_ = false;
};

}  // namespace yon::test
