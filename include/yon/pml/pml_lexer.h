// The lexer of pml: from characters to tokens that one of three tags ends.
#pragma once

#include <iosfwd>

#include "yon/base/string.h"

namespace yon::pml {

/// A source of characters, and the cutting of tokens from it. Derive from it to read pml from anywhere else. One
/// object serves one thread at a time.
class YON_API pmlLexer {
public:
    /// What ended a token.
    enum TokenFlag {
        TokenColon,  ///< ":": a name, and a type follows
        TokenBegin,  ///< "(": a name or a type, and a value follows
        TokenEnd,    ///< ")": a value, or the end of a list
    };

    pmlLexer() = default;
    pmlLexer(pmlLexer const &) = delete;
    pmlLexer & operator=(pmlLexer const &) = delete;
    virtual ~pmlLexer();

    /// Take the next character; false at the end.
    virtual bool __get_char(char & c) = 0;
    /// Look at the next character without taking it.
    virtual bool __peek_char(char & c) = 0;
    /// Give a character back, to be read next.
    virtual bool __putback_char(char c) = 0;
    /// Take characters until one is not blank, and deliver that one; false at the end.
    virtual bool __skip_blank(char & c) = 0;
    /// Drop one character.
    virtual bool __skip_char() = 0;
    /// Step back over the last character taken.
    virtual bool __unget_char() = 0;
    /// The source has not failed.
    virtual bool __stream_ok() = 0;
    /// The source is at its end, which is no failure.
    virtual bool eof() = 0;

    /// Reads the next token, without comments, with adjacent quoted pieces joined and escapes resolved. False when
    /// the input ends first; what was read so far is in `token` then.
    bool getToken(String & token, TokenFlag & flag);

    /// White space. Bytes from 80 hex up never are, whatever the locale says: they may be parts of letters, and a
    /// text must not lose its end to a locale that takes one of them for a blank.
    static bool IsBlankChar(char c) noexcept { return c == ' ' || (c >= '\t' && c <= '\r'); }
};

/// Reads from a stream that the caller keeps alive. It takes no character beyond the last one it needs.
class YON_API pmlLexerIstream final : public pmlLexer {
public:
    explicit pmlLexerIstream(std::istream & in) noexcept : in_(in) {}
    bool __get_char(char & c) override;
    bool __peek_char(char & c) override;
    bool __putback_char(char c) override;
    bool __skip_blank(char & c) override;
    bool __skip_char() override;
    bool __unget_char() override;
    bool __stream_ok() override;
    bool eof() override;

private:
    std::istream & in_;
};

/// Reads a NUL-terminated text by advancing the caller's pointer.
class YON_API pmlLexerLpctstr final : public pmlLexer {
public:
    explicit pmlLexerLpctstr(char const *& text) noexcept : text_(text), begin_(text) {}
    bool __get_char(char & c) override;
    bool __peek_char(char & c) override;
    bool __putback_char(char c) override;
    bool __skip_blank(char & c) override;
    bool __skip_char() override;
    bool __unget_char() override;
    bool __stream_ok() override;
    bool eof() override;

private:
    char const *& text_;
    char const * const begin_;
};

}  // namespace yon::pml
