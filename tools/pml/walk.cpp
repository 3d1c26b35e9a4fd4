#include "walk.h"

namespace pmltool {

namespace {

using yon::pml::pmlLexer;

class Walk {
public:
    Walk(std::string_view text, Visitor & visitor) noexcept : scanner_(text), visitor_(visitor) {}

    void run() {
        Next next = readName();
        for (;;) {
            switch (next) {
                case Next::type:
                    next = readType();
                    break;
                case Next::value:
                    next = readValue();
                    break;
                default:
                    if (!finish(next == Next::listEnd)) return readRest();
                    next = readName();
            }
        }
    }

private:
    /// What follows a token: a part of the same node, or the end of the node, which may end its list, too.
    enum class Next { type, value, nodeEnd, listEnd };

    Token const & readToken() {
        Token const & token = scanner_.next();
        visitor_.token(token);
        if (Piece const * const piece = token.unclosed()) {
            explained_ = true;
            visitor_.error(piece->begin, piece->kind == Piece::comment ? "this comment is never closed"
                                                                       : "this quote is never closed");
        }
        ended_ = token.ended;
        return token;
    }

    Next readName() {
        Token const & token = readToken();
        if (!token.ended) {
            if (token.hasText() && !explained_) visitor_.error(token.begin, "the input ends behind this name");
        } else if (token.flag != pmlLexer::TokenEnd) {
            return named(token);
        } else if (token.hasText()) {
            bareName(token);
        } else if (lists_.empty()) {
            visitor_.error(token.tag, "\")\" without a \"(\"");
        }
        if (!lists_.empty()) visitor_.listEnd(token);
        return Next::listEnd;
    }

    Next named(Token const & token) {
        visitor_.name(token);
        open_ = token.tag;
        return token.flag == pmlLexer::TokenColon ? Next::type : Next::value;
    }

    /// The tag behind a bare name is read again, by the list around its own, where there is one.
    void bareName(Token const & token) {
        visitor_.name(token);
        visitor_.bare();
        if (lists_.empty()) visitor_.error(token.tag, "\")\" without a \"(\"");
        if (lists_.size() < 2) return;
        visitor_.error(token.begin, "this name has no value: the \")\" behind it closes two lists");
        scanner_.unget();
    }

    Next readType() {
        for (bool reported = false;; reported = true) {
            Token const & token = readToken();
            if (!token.ended) {
                visitor_.error(token.begin, "get type token");
                visitor_.bare();
                if (!lists_.empty()) visitor_.listEnd(token);
                return Next::listEnd;
            }
            if (token.flag == pmlLexer::TokenBegin) {
                visitor_.type(token);
                open_ = token.tag;
                return Next::value;
            }
            if (!reported) {
                visitor_.error(token.begin, first_
                                                ? "not found value begin tag, token; text with a \":\" needs quotes"
                                                : "not found value begin tag, token");
            }
            if (token.flag == pmlLexer::TokenEnd) return lostBegin(token);
        }
    }

    /// A ")" stands where a "(" should. In the first node of a list, that was meant to be a text, and the list ends.
    Next lostBegin(Token const & token) {
        visitor_.bare();
        if (!first_) return Next::nodeEnd;
        visitor_.listEnd(token);
        return Next::listEnd;
    }

    Next readValue() {
        Token const & token = readToken();
        if (token.ended && token.flag != pmlLexer::TokenEnd) {
            visitor_.listBegin();
            lists_.push_back(open_);
            first_ = true;
            return named(token);
        }
        visitor_.text(token);
        if (!token.ended && !explained_) visitor_.error(open_, "this value is never closed");
        return Next::nodeEnd;
    }

    /// A node is complete, and perhaps its list. False when that was the root.
    bool finish(bool endsList) {
        first_ = false;
        if (endsList && !lists_.empty()) {
            if (!ended_) unclosedList();
            lists_.pop_back();
        }
        return !lists_.empty();
    }

    void unclosedList() {
        if (explained_) return;
        constexpr int most = 8;
        ++unclosed_;
        if (unclosed_ <= most) visitor_.error(lists_.back(), "this list is never closed");
        if (unclosed_ > most && lists_.size() == 1) {
            visitor_.error(lists_.back(), "this list, and others in it, are never closed");
        }
    }

    /// Only one node is read from a document.
    void readRest() {
        if (!ended_) return;
        Token const & token = readToken();
        if (token.ended || token.hasText()) {
            visitor_.error(token.begin, "text behind the end of the node is not read");
        }
    }

    Scanner scanner_;
    Visitor & visitor_;
    std::vector<std::size_t> lists_;  ///< where the open ones begin
    std::size_t open_ = 0;            ///< the "(" of the node's value
    bool first_ = false;              ///< the node is the first of its list
    bool ended_ = true;               ///< a tag ended the last token
    bool explained_ = false;          ///< why the input ended early
    int unclosed_ = 0;
};

}  // namespace

void walk(std::string_view text, Visitor & visitor) { Walk(text, visitor).run(); }

}  // namespace pmltool
