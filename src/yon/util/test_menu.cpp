#include "yon/util/test_menu.h"

#include <algorithm>
#include <charconv>
#include <set>

#include "yon/log/console.h"
#include "yon/string/string_buffer.h"

namespace yon::test {

bool liesWithin(istr path, istr where) {
    if (where.empty()) return true;
    if (path.leftstr(where.size()) != where) return false;
    return path.size() == where.size() || path[where.size()] == '/';
}

std::vector<String> Menu::entries() const {
    std::vector<String> entries;
    std::set<String> seen;
    for (Case const * c : cases_) {
        String const path = c->path();
        if (!liesWithin(path, where_)) continue;
        istr const rest = where_.empty() ? istr(path) : istr(path).substr(static_cast<ulong>(where_.size()) + 1);
        ulong const slash = rest.find('/');
        String const entry = slash == npos ? rest : rest.leftstr(slash + 1);
        if (seen.insert(entry).second) entries.push_back(entry);
    }
    return entries;
}

String Menu::text() const {
    StringBuffer text;
    int number = 0;
    for (String const & entry : entries()) text.append(++number).append(". ").append(entry).append('\n');
    text.append("a number or name, \"all\" for all of these, \"..\" for the menu above, \"q\" to end\n");
    return text.str();
}

String Menu::below(istr entry) const { return where_.empty() ? String(entry) : where_ + '/' + String(entry); }

String Menu::choose(istr line) {
    String typed = line.trimLeft();
    StrTrimRight(typed);
    istr const choice = typed;
    if (choice == "q") left_ = true;
    if (choice.empty() || choice == "q") return "";
    if (choice == "all") return where_.empty() ? String("all") : where_;
    if (choice == "..") {
        std::size_t const slash = where_.rfind('/');
        where_.resize(slash == where_.npos ? 0 : slash);
        return "";
    }
    std::vector<String> const all = entries();
    std::size_t number = 0;
    auto const [end, error] = std::from_chars(choice.data(), choice.data() + choice.size(), number);
    bool const isNumber = error == std::errc() && end == choice.data() + choice.size();
    auto const entry =
        isNumber ? (number >= 1 && number <= all.size() ? all.begin() + static_cast<std::ptrdiff_t>(number - 1)
                                                        : all.end())
                 : std::find_if(all.begin(), all.end(),
                                [&](String const & e) { return e == choice || e == String(choice) + '/'; });
    if (entry == all.end()) {
        console::println("not in this menu: " + String(choice));
        return "";
    }
    if (entry->back() != '/') return below(*entry);
    where_ = below(istr(*entry).leftstr(static_cast<ulong>(entry->size()) - 1));
    return "";
}

}  // namespace yon::test
