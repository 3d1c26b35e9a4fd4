#include "scanner.h"

#include "yon/pml/pml_parser.h"

namespace pmltool {

namespace {

bool isBlank(char c) noexcept { return yon::pml::pmlLexer::IsBlankChar(c); }
bool isQuote(char c) noexcept { return c == '\'' || c == '"'; }

}  // namespace

yon::String Token::value() const {
    yon::String value(text);
    while (!value.empty() && isBlank(value.back())) value.pop_back();
    if (mixed) {
        value.erase(value.begin());
    } else {
        yon::pml::unescapeString(value);
    }
    return value;
}

bool Scanner::Characters::__peek_char(char & c) {
    if (next_ == text_.size()) return false;
    c = text_[next_];
    return true;
}

bool Scanner::Characters::__skip_blank(char & c) {
    while (__get_char(c)) {
        if (!isBlank(c)) return true;
    }
    return false;
}

bool Scanner::Characters::__skip_char() {
    if (next_ == text_.size()) return false;
    ++next_;
    return true;
}

bool Scanner::Characters::__unget_char() noexcept {
    if (next_ == 0) return false;
    --next_;
    return true;
}

Token const & Scanner::next() {
    token_.from = source_.offset();
    token_.ended = source_.getToken(token_.text, token_.flag);
    token_.tag = source_.offset() - token_.ended;
    dissect();
    return token_;
}

/// Finds the pieces between the start of the token and its tag. There, a "(" always begins a comment.
void Scanner::dissect() {
    token_.pieces.clear();
    token_.begin = token_.end = token_.tag;
    bool hasText = false;
    for (std::size_t p = token_.from; p < token_.tag;) {
        char const c = text_[p];
        if (isBlank(c)) {
            ++p;
            continue;
        }
        Piece const piece = c == '(' ? comment(p) : isQuote(c) ? quoted(p) : plain(p);
        token_.pieces.push_back(piece);
        p = piece.end;
        if (piece.kind == Piece::comment) continue;
        if (!hasText) token_.begin = piece.begin;
        token_.end = piece.end;
        hasText = true;
    }
    token_.mixed = isMixed();
    // Where nothing but comments comes before the end of the input, that is at the last one.
    if (!hasText && !token_.ended && !token_.pieces.empty()) token_.begin = token_.end = token_.pieces.back().begin;
}

/// A comment between two pieces keeps the lexer from joining them.
bool Scanner::isMixed() const noexcept {
    Piece const * first = nullptr;
    Piece const * last = nullptr;
    bool commented = false;
    for (Piece const & piece : token_.pieces) {
        if (piece.kind == Piece::comment) {
            commented = first != nullptr;
            continue;
        }
        if (piece.kind == Piece::plain || !piece.closed || commented) return false;
        if (first == nullptr) first = &piece;
        last = &piece;
    }
    return first != nullptr && text_[first->begin] != text_[last->begin];
}

Piece Scanner::comment(std::size_t begin) const noexcept {
    std::size_t depth = 1;
    std::size_t p = begin + 2;
    while (p + 1 < token_.tag) {
        if (text_[p] == '(' && text_[p + 1] == '*') {
            ++depth;
        } else if (text_[p] == '*' && text_[p + 1] == ')') {
            --depth;
        } else {
            ++p;
            continue;
        }
        p += 2;
        if (depth == 0) return {Piece::comment, begin, p, true};
    }
    return {Piece::comment, begin, token_.tag, false};
}

Piece Scanner::quoted(std::size_t begin) const noexcept {
    for (std::size_t p = begin + 1; p < token_.tag; ++p) {
        if (text_[p] == '\\') {
            ++p;
        } else if (text_[p] == text_[begin]) {
            return {Piece::quoted, begin, p + 1, true};
        }
    }
    return {Piece::quoted, begin, token_.tag, false};
}

Piece Scanner::plain(std::size_t begin) const noexcept {
    std::size_t end = begin;
    while (end < token_.tag && text_[end] != '(' && !isQuote(text_[end])) ++end;
    while (isBlank(text_[end - 1])) --end;
    return {Piece::plain, begin, end, true};
}

}  // namespace pmltool
