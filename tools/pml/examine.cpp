#include "examine.h"

#include <algorithm>
#include <ostream>

#include "number_rules.h"
#include "tree.h"
#include "visible.h"
#include "walk.h"

namespace pmltool {

namespace {

/// How much of a text a message shows.
constexpr std::size_t shownLength = 40;

class Examiner final : public Visitor {
public:
    Examiner(Source const & source, Report & report) noexcept : text_(source.text), lines_(text_), report_(report) {}

    void run() {
        walk(text_, *this);
        std::size_t const nul = text_.find('\0');
        if (nul != text_.npos) warn(nul, "a NUL byte: a program that reads the document as a C string ends here");
        auto & findings = report_.findings;
        if (!named_ && findings.empty()) warn(0, "there is no node");
        std::stable_sort(findings.begin(), findings.end(),
                         [](Finding const & a, Finding const & b) { return a.offset < b.offset; });
    }

    void token(Token const & token) override {
        for (Piece const & piece : token.pieces) {
            if (piece.kind == Piece::comment && report_.comments++ == 0) report_.firstComment = piece.begin;
        }
    }

    void name(Token const & token) override {
        named_ = true;
        type_.clear();
        warnOfQuotes(token, "name");
        if (lists_.empty()) return;
        if (token.text.starts_with('*')) {
            warn(token.begin,
                 "a name that begins with \"*\" opens a comment when it is written right behind a \"(\"");
        }
        List & list = lists_.back();
        std::size_t const index = list.size++;
        std::string const key = keyOf(token.text, index);
        auto const [known, isNew] = list.places.emplace(key, token.begin);
        if (isNew) return;
        error(token.begin, "duplicated unit: " + quoted(key) + " stands at " + lines_.inWords(known->second));
    }

    void type(Token const & token) override {
        type_ = token.text;
        warnOfQuotes(token, "type");
    }

    void text(Token const & token) override {
        String const value = token.value();
        if (token.ended && !value.empty() && (isBlank(value.front()) || isBlank(value.back()))) {
            warn(token.begin, "this text begins or ends with a blank, and keeps it only in quotes");
        }
        std::string const fault = numberFault(type_, value);
        if (!fault.empty()) warn(token.begin, visible(type_, shownLength) + ' ' + quoted(value) + ' ' + fault);
        warnOfMixture(token);
    }

    void listBegin() override { lists_.emplace_back(); }
    void listEnd(Token const &) override { lists_.pop_back(); }
    void error(std::size_t where, char const * message) override { error(where, std::string(message)); }

private:
    struct List {
        std::size_t size = 0;
        KeyMap<std::size_t> places;  ///< of the nodes, by name or "[n]"
    };

    static bool isBlank(char c) noexcept { return yon::pml::pmlLexer::IsBlankChar(c); }
    static std::string quoted(std::string_view text) { return '"' + visible(text, shownLength) + '"'; }

    void error(std::size_t where, std::string message) {
        report_.findings.push_back({where, true, std::move(message)});
        report_.hasErrors = true;
    }
    void warn(std::size_t where, std::string message) {
        report_.findings.push_back({where, false, std::move(message)});
    }

    void warnOfQuotes(Token const & token, std::string const & what) {
        for (Piece const & piece : token.pieces) {
            if (piece.kind == Piece::quoted) return warn(piece.begin, "the quotes are a part of this " + what);
        }
    }

    /// A value is either plain, or quoted in pieces of the same quotes that follow each other.
    void warnOfMixture(Token const & token) {
        Piece const * first = nullptr;
        bool commented = false;
        for (Piece const & piece : token.pieces) {
            if (first == nullptr) {
                if (piece.kind != Piece::comment) first = &piece;
            } else if (piece.kind == Piece::comment) {
                commented = true;
            } else if (first->kind == Piece::plain) {
                return warnOfInnerQuote(piece);
            } else if (piece.kind == Piece::plain) {
                return warn(piece.begin, "text outside the quotes: the quotes become a part of it");
            } else if (commented || text_[piece.begin] != text_[first->begin]) {
                return warn(piece.begin, "the quotes around this piece become a part of the text");
            }
        }
    }

    void warnOfInnerQuote(Piece const & piece) {
        if (!piece.closed) return;  // which is an error
        warn(piece.begin,
             "this quote inside unquoted text hides everything up to the one at " + lines_.inWords(piece.end - 1));
    }

    std::string_view const text_;
    Lines lines_;
    Report & report_;
    std::vector<List> lists_;  ///< the open ones
    std::string type_;         ///< of the node being read
    bool named_ = false;
};

}  // namespace

Report examine(Source const & source) {
    Report report;
    Examiner(source, report).run();
    return report;
}

void print(Report const & report, Source const & source, std::ostream & out, bool warnings) {
    Lines lines(source.text);
    std::string text;  // standard error has no buffer
    for (Finding const & finding : report.findings) {
        if (!finding.error && !warnings) continue;
        text += source.name + ':' + lines.at(finding.offset) + (finding.error ? ": error: " : ": warning: ") +
                finding.text + '\n';
    }
    out << text;
}

}  // namespace pmltool
