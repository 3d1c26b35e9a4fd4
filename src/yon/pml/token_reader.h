// Cutting tokens from a source, as fast as the source allows.
#pragma once

#include "yon/base/byte_search.h"
#include "yon/pml/pml_lexer.h"

namespace yon::pml {

/// A place in the input, counted from 1.
struct Position {
    ulong line = 1;
    ulong column = 1;
};

/// A token. Its text points into the source where it stands there in one piece, otherwise into `buffer`, and is good
/// until the next token is read.
struct Token {
    istr text;
    pmlLexer::TokenFlag flag = pmlLexer::TokenEnd;
    bool mixed = false;  ///< the text is of quoted pieces, of which the last one has other quotes than the first
    String buffer;
};

inline istr trimmedRight(istr text) noexcept {
    while (!text.empty() && pmlLexer::IsBlankChar(text[text.size() - 1])) text = text.removeRight(1);
    return text;
}

inline bool isQuote(char c) noexcept { return c == '\'' || c == '"'; }

/// A value token without its quotes: both of a pair, only the opening one of mixed pieces.
inline istr unquoted(istr token, bool mixed = false) noexcept {
    if (token.size() < 2 || !isQuote(token[0])) return token;
    if (token[token.size() - 1] == token[0]) return token.removeLeft(1).removeRight(1);
    return mixed ? token.removeLeft(1) : token;
}

/// Characters in memory.
class MemorySource {
public:
    using Mark = char const *;
    static constexpr bool contiguous = true;

    MemorySource(char const * begin, char const * end) noexcept : begin_(begin), p_(begin), end_(end) {}

    bool get(char & c) noexcept {
        if (p_ == end_) return false;
        c = *p_++;
        return true;
    }
    bool peek(char & c) const noexcept {
        if (p_ == end_) return false;
        c = *p_;
        return true;
    }
    void unget() noexcept { --p_; }
    bool atEnd() const noexcept { return true; }

    /// Skips blanks; false at the end.
    bool skipBlanks() noexcept {
        while (p_ != end_ && pmlLexer::IsBlankChar(*p_)) {
            // What follows a line end is indentation.
            p_ = blanksEnd(p_ + 1, end_);
        }
        return p_ != end_;
    }
    /// Takes characters that mean nothing to the lexer.
    void takePlain(String & out) {
        char const * const from = p_;
        p_ = plainEnd(from);
        out.append(from, p_);
    }
    /// Takes characters up to the quote or a backslash.
    void takeQuoted(String & out, char quote) {
        char const * const from = p_;
        p_ = quotedEnd(from, quote);
        out.append(from, p_);
    }

    /// Reads a token that stands in the source in one piece and that a tag ends. False, and nothing taken, otherwise.
    bool readWhole(Token & token) noexcept {
        char const * const from = p_;
        char const * to = nullptr;
        char const * tag = nullptr;
        if (isQuote(*from)) {
            char const * const close = quotedEnd(from + 1, *from);
            if (close == end_ || *close != *from) return false;
            to = tag = close + 1;
            while (tag != end_ && pmlLexer::IsBlankChar(*tag)) ++tag;
        } else {
            to = tag = plainEnd(from);
        }
        if (tag == end_) return false;
        if (*tag == ')') {
            token.flag = pmlLexer::TokenEnd;
        } else if (*tag == ':') {
            token.flag = pmlLexer::TokenColon;
        } else if (*tag == '(' && tag + 1 != end_ && tag[1] != '*') {
            token.flag = pmlLexer::TokenBegin;
        } else {
            return false;
        }
        while (to != from && pmlLexer::IsBlankChar(to[-1])) --to;
        token.text = istr(from, static_cast<ulong>(to - from));
        p_ = tag + 1;
        return true;
    }

    Mark mark() const noexcept { return p_; }
    Position position(Mark mark) const noexcept {
        Position at;
        char const * line = begin_;
        for (char const * p = begin_; p != mark; ++p) {
            if (*p != '\n') continue;
            ++at.line;
            line = p + 1;
        }
        at.column = toLength(static_cast<std::size_t>(mark - line)) + 1;
        return at;
    }

private:
    char const * plainEnd(char const * p) const noexcept { return findTagOrQuote(p, end_); }
    char const * quotedEnd(char const * p, char quote) const noexcept { return findEither(p, end_, quote, '\\'); }

    char const * const begin_;
    char const * p_;
    char const * const end_;
};

/// Characters from a lexer; counts lines and columns on the way. `L` is the lexer's class, so that calls to a final
/// one are direct.
template <class L>
class LexerSource {
public:
    using Mark = Position;
    static constexpr bool contiguous = false;

    explicit LexerSource(L & lexer) noexcept : lexer_(lexer) {}

    bool get(char & c) {
        if (!lexer_.__get_char(c)) return false;
        before_ = here_;
        if (c == '\n') {
            ++here_.line;
            here_.column = 1;
        } else {
            ++here_.column;
        }
        return true;
    }
    bool peek(char & c) { return lexer_.__peek_char(c); }
    void unget() {
        lexer_.__unget_char();
        here_ = before_;
    }
    /// Whether a failure to read was the end of the input.
    bool atEnd() { return lexer_.__stream_ok() && lexer_.eof(); }

    bool skipBlanks() {
        char c;
        while (get(c)) {
            if (pmlLexer::IsBlankChar(c)) continue;
            unget();
            return true;
        }
        return false;
    }
    void takePlain(String &) noexcept {}
    void takeQuoted(String &, char) noexcept {}

    Mark mark() const noexcept { return here_; }
    Position position(Mark mark) const noexcept { return mark; }

private:
    L & lexer_;
    Position here_;
    Position before_;
};

/// Skips to the end of a comment whose opening was taken; comments nest. False when the input ends first.
template <class Source>
bool skipComment(Source & in) {
    std::size_t depth = 1;
    char c;
    while (in.get(c)) {
        char next;
        if ((c != '(' && c != '*') || !in.peek(next)) continue;
        if (c == '(' && next == '*') {
            ++depth;
        } else if (c == '*' && next == ')') {
            --depth;
        } else {
            continue;
        }
        in.get(c);
        if (depth == 0) return true;
    }
    return false;
}

/// Reads quoted text whose opening quote was taken, and the quoted pieces that follow it, into one text with its
/// first opening and its last closing quote. False when the input ends first.
template <class Source>
bool readQuoted(Source & in, char quote, Token & token) {
    String & out = token.buffer;
    char const opening = out.empty() ? quote : '\0';
    out += quote;
    char c;
    for (;;) {
        in.takeQuoted(out, quote);
        if (!in.get(c)) return false;
        if (c == '\\') {
            if (!in.get(c)) return false;
            out += c;
        } else if (c != quote) {
            out += c;
        } else {
            out += quote;
            token.mixed = opening != '\0' && quote != opening;
            if (!in.skipBlanks()) return false;
            if (!in.peek(c) || !isQuote(c)) return true;
            in.get(quote);
            out.pop_back();
            token.mixed = false;
        }
    }
}

/// Reads a token; `start` is where its first character, or the tag of an empty one, stands. False when the input ends
/// before a tag; what was read so far is the text then.
template <class Source>
bool readToken(Source & in, Token & token, typename Source::Mark & start) {
    token.text = istr();
    token.mixed = false;
    bool const more = in.skipBlanks();
    start = in.mark();
    if (!more) return false;
    if constexpr (Source::contiguous) {
        if (in.readWhole(token)) return true;
    }
    String & out = token.buffer;
    out.clear();
    auto const endedBy = [&](pmlLexer::TokenFlag flag) {
        token.flag = flag;
        token.text = trimmedRight(out);
        return true;
    };
    char c;
    while (in.get(c)) {
        if (c == ':') return endedBy(pmlLexer::TokenColon);
        if (c == ')') return endedBy(pmlLexer::TokenEnd);
        if (c == '(') {
            char next;
            if (!in.peek(next) || next != '*') return endedBy(pmlLexer::TokenBegin);
            in.get(next);
            if (!skipComment(in) || !in.skipBlanks()) break;
            if (out.empty()) start = in.mark();
        } else if (isQuote(c)) {
            if (!readQuoted(in, c, token)) break;
        } else {
            token.mixed = false;
            out += c;
            in.takePlain(out);
        }
    }
    token.text = out;
    return false;
}

}  // namespace yon::pml
