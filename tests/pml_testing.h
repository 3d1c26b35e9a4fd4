// What the tests and the fuzz target of pml share: parsing from every source, and comparing trees of any depth.
#pragma once

#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "yon/pml/pml_parser.h"

namespace yon::pml {

/// A lexer over text in memory, such as an application writes for a source of its own.
class MemoryLexer final : public pmlLexer {
public:
    explicit MemoryLexer(std::string_view text) : text_(text) {}
    std::size_t at() const { return at_; }

    bool __get_char(char & c) override { return __peek_char(c) && __skip_char(); }
    bool __peek_char(char & c) override {
        if (eof()) return false;
        c = text_[at_];
        return true;
    }
    bool __putback_char(char c) override { return at_ > 0 && text_[at_ - 1] == c && __unget_char(); }
    bool __skip_blank(char & c) override {
        while (__get_char(c)) {
            if (!IsBlankChar(c)) return true;
        }
        return false;
    }
    bool __skip_char() override { return !eof() && ++at_; }
    bool __unget_char() override { return at_ > 0 && at_--; }
    bool __stream_ok() override { return true; }
    bool eof() override { return at_ >= text_.size(); }

private:
    std::string_view text_;
    std::size_t at_ = 0;
};

/// What came of parsing from one source.
struct Outcome {
    std::string source;
    std::unique_ptr<Unit> unit = std::make_unique<Unit>();
    std::string error;                     ///< empty when there was none
    std::size_t read = std::string::npos;  ///< characters taken, where the source shows it
};

/// Parses `text` as a node, or as a bare value, from a view, a stream, a lexer of ours and, without NULs, a C string.
inline std::vector<Outcome> parseFromAll(std::string const & text, bool valueOnly = false) {
    std::vector<Outcome> outcomes;
    auto const parse = [&](char const * source, auto read, auto place) {
        Outcome o;
        o.source = source;
        try {
            pmlParserBase parser(o.unit.get(), valueOnly ? pmlParserBase::PasingValue : pmlParserBase::PasingName);
            if (!read(parser)) o.error = "false";
        } catch (std::invalid_argument const & e) {
            o.error = e.what();
        }
        o.read = place();
        outcomes.push_back(std::move(o));
    };
    auto const from = [](auto & source) {
        return [&source](pmlParserBase & parser) { return parser.doParser(source); };
    };
    istr const view(text);
    std::istringstream in(text);
    MemoryLexer lexer(text);
    char const * p = text.c_str();
    parse("view", from(view), [] { return std::string::npos; });
    parse("stream", from(in), [&] { return in.clear(), static_cast<std::size_t>(in.tellg()); });
    parse("lexer", from(lexer), [&] { return lexer.at(); });
    if (text.find('\0') != std::string::npos) return outcomes;
    parse("C string", from(p), [&] { return static_cast<std::size_t>(p - text.c_str()); });
    return outcomes;
}

/// Whether two trees have the same names, types, values and shape, however deep. Between nodes without a value, with
/// an empty text and with an empty list, which are printed alike, a difference may be let pass.
inline bool sameTree(Unit const & left, Unit const & right, bool emptyIsEmpty = false) {
    std::vector<std::pair<Unit const *, Unit const *>> pairs{{&left, &right}};
    while (!pairs.empty()) {
        auto const [a, b] = pairs.back();
        pairs.pop_back();
        ntv::ListValue * listA = nullptr;
        ntv::ListValue * listB = nullptr;
        bool const kinds =
            a->getValue(listA) == b->getValue(listB) && (a->value() == nullptr) == (b->value() == nullptr);
        bool const same = a->name() == b->name() && a->type() == b->type() &&
                          a->getStringValue() == b->getStringValue() && (kinds || emptyIsEmpty);
        if (!same || a->numofChildren() != b->numofChildren()) return false;
        for (ulong i = 0; i < a->numofChildren(); ++i) pairs.emplace_back(listA->data()[i], listB->data()[i]);
    }
    return true;
}

/// A small tree as text: `name:type`, then `=text` for a text, `{child child}` for a list, nothing without a value.
inline std::string shape(Unit const & unit) {
    std::string out = unit.name();
    if (!unit.type().empty()) out += ":" + unit.type();
    if (unit.stringValue() != nullptr) out += "=" + std::string(unit.getStringValue());
    ntv::ListValue * list = nullptr;
    if (!unit.getValue(list)) return out;
    out += '{';
    for (Unit const * child : *list) out += (child->index() == 0 ? "" : " ") + shape(*child);
    return out + '}';
}

inline String keyOf(Unit const & unit) {
    return unit.name().empty() ? String("[" + std::to_string(unit.index()) + "]") : unit.name();
}

/// What is wrong with the links of a tree, however deep: parents, positions, owners, and whether each child answers
/// to its key, unless that means something else in a path. Empty when all is well.
inline std::string brokenLinks(Unit const & root) {
    std::vector<Unit const *> units{&root};
    while (!units.empty()) {
        Unit const & unit = *units.back();
        units.pop_back();
        if (unit.value() != nullptr && unit.value()->owner() != &unit)
            return "the owner of the value of " + keyOf(unit);
        ntv::ListValue * list = nullptr;
        if (!unit.getValue(list)) continue;
        ulong i = 0;
        for (Unit const * child : *list) {
            String const key = keyOf(*child);
            if (child->parent() != &unit) return "the parent of " + key;
            if (child->index() != i++) return "the position of " + key;
            bool const isStep = key == "." || key == ".." || key == "/";
            if (!isStep && unit.at(key) != child) return "the look-up of " + key;
            units.push_back(child);
        }
    }
    return {};
}

}  // namespace yon::pml
