// Tokens with their places.
#pragma once

#include <string_view>
#include <vector>

#include "yon/pml/pml_lexer.h"

namespace pmltool {

/// A part of a token as it stands in the text: [begin, end) without blanks around.
struct Piece {
    enum Kind { plain, quoted, comment };
    Kind kind;
    std::size_t begin;
    std::size_t end;
    bool closed;  ///< false for quotes and comments that the end of the input cuts off
};

/// A token: what the library's lexer reads, and where.
struct Token {
    yon::String text;
    yon::pml::pmlLexer::TokenFlag flag;
    bool ended;         ///< by a tag; otherwise the input ended
    std::size_t from;   ///< where the lexer began to read
    std::size_t begin;  ///< of the text, or the tag when there is none
    std::size_t end;    ///< of the text, or the tag when there is none
    std::size_t tag;    ///< the tag, or the end of the input
    std::vector<Piece> pieces;
    bool mixed;  ///< all in quotes, of which the last ones differ from the first ones

    /// What the parser makes of the token where it is a text.
    yon::String value() const;
    /// The quote or comment that is never closed, or null.
    Piece const * unclosed() const noexcept {
        return pieces.empty() || pieces.back().closed ? nullptr : &pieces.back();
    }
    bool hasText() const noexcept { return begin != end; }
};

/// Cuts a text, which has to outlive it, into tokens. Takes the time that the text is long.
class Scanner {
public:
    explicit Scanner(std::string_view text) noexcept : source_(text), text_(text) {}

    /// Reads on. The token is good until the next one is read.
    Token const & next();
    /// Gives back the tag that ended the token, to be read again.
    void unget() noexcept { source_.__unget_char(); }
    /// How far the text was read.
    std::size_t offset() const noexcept { return source_.offset(); }

private:
    /// The text, for the library's lexer.
    class Characters final : public yon::pml::pmlLexer {
    public:
        explicit Characters(std::string_view text) noexcept : text_(text) {}
        std::size_t offset() const noexcept { return next_; }

        bool __get_char(char & c) override { return __peek_char(c) && __skip_char(); }
        bool __peek_char(char & c) override;
        bool __putback_char(char) override { return __unget_char(); }
        bool __skip_blank(char & c) override;
        bool __skip_char() override;
        bool __unget_char() noexcept override;
        bool __stream_ok() override { return true; }
        bool eof() override { return next_ == text_.size(); }

    private:
        std::string_view const text_;
        std::size_t next_ = 0;
    };

    void dissect();
    bool isMixed() const noexcept;
    Piece comment(std::size_t begin) const noexcept;
    Piece quoted(std::size_t begin) const noexcept;
    Piece plain(std::size_t begin) const noexcept;

    Characters source_;
    std::string_view const text_;
    Token token_;
};

}  // namespace pmltool
