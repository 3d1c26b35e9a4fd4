#include <ostream>

#include "commands.h"
#include "replace_file.h"
#include "tree.h"
#include "walk.h"
#include "yon/pml/pml_writer.h"

namespace pmltool {

namespace {

using yon::pml::ntvToCompactPml;
using yon::pml::ShowPattern;

/// Where a node stands in the text.
struct Site {
    enum Kind { bare, text, list };
    Kind kind = bare;
    std::size_t head = 0;   ///< the end of its name, or type
    std::size_t open = 0;   ///< behind its "("
    std::size_t begin = 0;  ///< of its text, without blanks and comments around
    std::size_t end = 0;    ///< of its text; of its last child and the comments behind it
    std::size_t tag = 0;    ///< its ")"
    std::string_view gap;   ///< the blanks before its last child
    bool mixed = false;     ///< comments stand inside its text
};

/// Finds the site of a node by its number in the text.
class SiteFinder final : public Visitor {
public:
    SiteFinder(std::string_view text, std::size_t number) : text_(text), before_(number) { walk(text, *this); }
    Site const & site() const noexcept { return site_; }

    void name(Token const & token) override {
        if (inside_ && depth_ == 1) site_.gap = blanksBefore(token.begin);
        here_ = before_-- == 0;
        head(token);
    }
    void type(Token const & token) override { head(token); }
    void text(Token const & token) override {
        if (!here_) return;
        bool const textAtBoth = !token.pieces.empty() && token.hasText();
        site_ = {Site::text, site_.head, site_.open, token.begin, token.end, token.tag, {}, false};
        for (Piece const & piece : token.pieces) {
            bool const between = piece.begin > token.begin && piece.end < token.end;
            site_.mixed |= textAtBoth && between && piece.kind == Piece::comment;
        }
    }
    void listBegin() override {
        if (here_) {
            site_.kind = Site::list;
            inside_ = true;
            here_ = false;
        }
        depth_ += inside_;
    }
    void listEnd(Token const & token) override {
        if (!inside_ || --depth_ != 0) return;
        inside_ = false;
        site_.end = token.pieces.empty() ? token.from : token.pieces.back().end;
        site_.tag = token.tag;
    }

private:
    void head(Token const & token) noexcept {
        if (!here_) return;
        site_.head = token.end;
        site_.open = token.tag + 1;
    }

    std::string_view blanksBefore(std::size_t end) const noexcept {
        std::size_t begin = end;
        while (begin != 0 && yon::pml::pmlLexer::IsBlankChar(text_[begin - 1])) --begin;
        return text_.substr(begin, end - begin);
    }

    std::string_view const text_;
    std::size_t before_;     ///< nodes to come before the one
    bool here_ = false;      ///< in the node
    bool inside_ = false;    ///< in its list
    std::size_t depth_ = 0;  ///< of lists, its own included
    Site site_;
};

/// Sets a node in the tree, and in the text in such a way that everything else in it stays as it stands.
class Setter {
public:
    Setter(Source & source, SetArguments const & arguments) : source_(source), arguments_(arguments) {
        parse(source, root_);
    }

    void run() {
        resolve();
        SiteFinder const finder(source_.text, numberOf(*node_, root_));
        site_ = finder.site();
        missing_.empty() ? change() : add();
        if (firstLost(root_, source_) != nullptr) fail("cannot be set without changing other nodes; see pml check");
    }

private:
    [[noreturn]] void fail(std::string const & what) const {
        throw BadInput(source_.name + ": " + arguments_.path + ": " + what);
    }

    /// Finds the node, or the last one on the way to it and the names of those that are missing.
    void resolve() {
        std::string_view rest = arguments_.path;
        node_ = &root_;
        while (!rest.empty()) {
            std::string_view const step = rest.substr(0, rest.find('/'));
            rest.remove_prefix(std::min(rest.size(), step.size() + 1));
            Unit * const next = missing_.empty() ? node_->find(step) : nullptr;
            if (next != nullptr) {
                node_ = next;
            } else if (!step.empty()) {
                if (arguments_.existing || step.find('[') != step.npos || step == "." || step == "..")
                    fail("no such node");
                missing_.emplace_back(step);
            }
        }
    }

    void change() {
        if (node_->listValue() != nullptr && !arguments_.force)
            fail("holds a list; --force puts a text in its place");
        node_->setValue(arguments_.value);
        String value;
        ntvToCompactPml(*node_, value, ShowPattern::VALUE | ShowPattern::QUOTE_BLANKS);
        switch (site_.kind) {
            case Site::bare:
                return replace(site_.head, site_.head, value);
            case Site::list:
                return replace(site_.open - 1, site_.tag + 1, value);
            case Site::text:
                if (site_.mixed) fail("comments stand inside the text");
                replace(site_.begin, site_.end, std::string_view(value).substr(1, value.size() - 2));
        }
    }

    void add() {
        if (node_->listValue() == nullptr) {
            if (!node_->valueEmpty()) fail("\"" + keyOf(*node_) + "\" holds a text and can have no nodes");
            delete node_->popValue();
        }
        Unit * last = node_;
        for (std::string const & name : missing_) last = &(*last)[name];
        last->setValue(arguments_.value);
        String added;
        ntvToCompactPml(*node_->listValue()->data().back(), added, ShowPattern::usual | ShowPattern::QUOTE_BLANKS);
        switch (site_.kind) {
            case Site::bare:
                return replace(site_.head, site_.head, '(' + added + ')');
            case Site::list:
                return replace(site_.end, site_.end, std::string(site_.gap) + added);
            case Site::text:
                replace(site_.begin, site_.end, added);
        }
    }

    void replace(std::size_t begin, std::size_t end, std::string_view by) {
        source_.text.replace(begin, end - begin, by);
    }

    Source & source_;
    SetArguments const & arguments_;
    Unit root_;
    Unit * node_ = nullptr;
    std::vector<std::string> missing_;
    Site site_;
};

}  // namespace

int set(SetArguments const & arguments, Console & console) {
    Source source = readSource(arguments.file, console);
    std::string const before = source.text;
    Setter(source, arguments).run();
    std::string_view const mark = source.marked ? "\xEF\xBB\xBF" : "";
    if (arguments.file == "-") {
        console.out << mark << source.text;
    } else if (source.text != before) {
        replaceFile(arguments.file, mark, source.text);
    }
    return ok;
}

}  // namespace pmltool
