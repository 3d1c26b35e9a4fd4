#include "yon/pml/pml_lexer.h"

#include <istream>

#include "yon/pml/token_reader.h"

namespace yon::pml {

pmlLexer::~pmlLexer() = default;

bool pmlLexer::getToken(String & token, TokenFlag & flag) {
    LexerSource<pmlLexer> in(*this);
    Token read;
    Position start;
    bool const ended = readToken(in, read, start);
    token = read.text;
    if (ended) flag = read.flag;
    return ended;
}

bool pmlLexerIstream::__get_char(char & c) {
    if (!__peek_char(c)) return false;
    return __skip_char();
}

bool pmlLexerIstream::__peek_char(char & c) {
    using Traits = std::istream::traits_type;
    if (!in_.good()) return false;
    try {
        auto const next = in_.rdbuf()->sgetc();
        if (!Traits::eq_int_type(next, Traits::eof())) {
            c = Traits::to_char_type(next);
            return true;
        }
        in_.setstate(std::ios::eofbit | std::ios::failbit);
    } catch (...) {
        in_.setstate(std::ios::badbit);
    }
    return false;
}

bool pmlLexerIstream::__putback_char(char c) {
    in_.clear(in_.rdstate() & std::ios::badbit);
    return static_cast<bool>(in_.putback(c));
}

bool pmlLexerIstream::__skip_blank(char & c) {
    while (__get_char(c)) {
        if (!IsBlankChar(c)) return true;
    }
    return false;
}

bool pmlLexerIstream::__skip_char() {
    using Traits = std::istream::traits_type;
    return !Traits::eq_int_type(in_.rdbuf()->sbumpc(), Traits::eof());
}

bool pmlLexerIstream::__unget_char() {
    in_.clear(in_.rdstate() & std::ios::badbit);
    return static_cast<bool>(in_.unget());
}

bool pmlLexerIstream::__stream_ok() { return !in_.bad(); }

bool pmlLexerIstream::eof() { return in_.eof(); }

bool pmlLexerLpctstr::__get_char(char & c) { return __peek_char(c) && __skip_char(); }

bool pmlLexerLpctstr::__peek_char(char & c) {
    if (eof()) return false;
    c = *text_;
    return true;
}

bool pmlLexerLpctstr::__putback_char(char c) { return text_ != begin_ && text_[-1] == c && __unget_char(); }

bool pmlLexerLpctstr::__skip_blank(char & c) {
    while (__get_char(c)) {
        if (!IsBlankChar(c)) return true;
    }
    return false;
}

bool pmlLexerLpctstr::__skip_char() {
    if (eof()) return false;
    ++text_;
    return true;
}

bool pmlLexerLpctstr::__unget_char() {
    if (text_ == begin_) return false;
    --text_;
    return true;
}

bool pmlLexerLpctstr::__stream_ok() { return true; }

bool pmlLexerLpctstr::eof() { return text_ == nullptr || *text_ == '\0'; }

}  // namespace yon::pml
