// The pml reader on foreign bytes: every source must give the same tree or the same error at the same place, and what
// is printed from a tree must be read back as that tree.
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "pml_testing.h"
#include "yon/pml/pml_writer.h"

namespace yon::pml {
namespace {

void require(bool holds, char const * what) {
    if (holds) return;
    std::fprintf(stderr, "broken: %s\n", what);
    std::abort();
}

ShowMode const modes[] = {ShowMode::COMPACT, ShowMode::SIMPLE, ShowMode::MIXED, ShowMode::FORMATTED};

bool hasQuote(istr word) {
    for (char c : word) {
        if (c == '\'' || c == '"') return true;
    }
    return false;
}

/// Whether a printed tree is read back as it is. Names and types keep the quotes with which they were read, but not
/// the backslashes between them; and behind the "(" of its list the "*" of a name opens a comment.
bool isReadBack(Unit const & root) {
    std::vector<Unit const *> units{&root};
    while (!units.empty()) {
        Unit const & unit = *units.back();
        units.pop_back();
        if (hasQuote(unit.name()) || hasQuote(unit.type())) return false;
        ntv::ListValue * list = nullptr;
        if (!unit.getValue(list) || list->empty()) continue;
        if (istr(list->data().front()->name()).beginWith("*")) return false;
        units.insert(units.end(), list->begin(), list->end());
    }
    return true;
}

void checkPrinting(Unit const & unit, ShowMode mode, ShowPattern pattern) {
    String text;
    require(ntvToPml(unit, text, mode, pattern), "printing fails");
    std::ostringstream stream;
    require(ntvToPml(unit, stream, mode, pattern) && stream.str() == text,
            "a stream gets another text than a string");
    if (!isReadBack(unit)) return;
    Unit again;
    require(ntvFromPml(again, istr(text)), "a printed tree cannot be read");
    require(sameTree(unit, again, true), "a printed tree is read as another one");
    String second;
    ntvToPml(again, second, mode, pattern);
    require(second == text, "a tree that was read back is printed in another way");
}

void checkTree(Unit const & unit) {
    Unit const copy(unit);
    require(sameTree(unit, copy), "a copy differs");
    require(brokenLinks(copy).empty(), "a node is linked or found in the wrong place");
    for (ShowMode mode : modes) {
        checkPrinting(copy, mode, ShowPattern::usual | ShowPattern::QUOTE_BLANKS);
    }
    checkPrinting(copy, ShowMode::FORMATTED, ShowPattern::usual | ShowPattern::QUOTE_BLANKS | ShowPattern::PATH);
}

void checkText(std::string const & text, bool valueOnly) {
    std::vector<Outcome> const outcomes = parseFromAll(text, valueOnly);
    Outcome const & first = outcomes.front();
    for (Outcome const & o : outcomes) {
        require(o.error == first.error, "two sources give different errors");
        require(sameTree(*o.unit, *first.unit), "two sources give different trees");
        require(&o == &first || o.read == outcomes[1].read, "two sources stand at different places");
    }
    checkTree(*first.unit);
}

}  // namespace
}  // namespace yon::pml

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    std::string const text(reinterpret_cast<char const *>(data), size);
    yon::pml::checkText(text, false);
    yon::pml::checkText(text, true);
    return 0;
}
