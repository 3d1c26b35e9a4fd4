// Source locations made at compile time: YON_FUNC, YON_HERE and YON_LOCATION.
#pragma once

#include <string_view>

#include "yon/base/diagnostics.h"

namespace yon::detail {

/// Cuts the qualified name out of what g++ and clang say of a function ("static int yon::Box<T>::put(T) [with …]").
///
/// Kept are the scopes with their template arguments and the name, operators included ("yon::X::operator()",
/// "yon::X::operator std::string"). Return type, parameters and qualifiers go, those of enclosing functions too, and
/// so do scopes without a name. A lambda is "<lambda>".
class FunctionNameScanner {
public:
    /// REQUIRES: `text.size()` characters of room at `out`.
    constexpr FunctionNameScanner(std::string_view text, char * out) : in_(text), out_(out) {}

    /// Returns the length of the name.
    constexpr std::size_t scan() {
        while (!in_.empty() && step()) {
        }
        return size_;
    }

private:
    /// Reads one piece; false when the name is complete.
    constexpr bool step() {
        if (atOperator()) return copyOperator();
        if (in_.starts_with("(anonymous class)::operator()")) return lambda(std::string_view(")::operator()"));
        if (in_.starts_with("<lambda")) return lambda(group());
        if (in_.starts_with("{anonymous}") || in_.starts_with("(anonymous ") || in_.starts_with("<unnamed ")) {
            skip(group().size() + scope.size());
            return true;
        }
        switch (in_.front()) {
            case '(':
                return parameters();
            case '[':
                skip(group().size());
                return true;  // ABI tag
            case '<':
                copy(group().size());
                return true;
            case ' ':
            case '*':
            case '&':
                // So far it was the return type, or a word of it.
                if (name() != "decltype") size_ = 0;
                skip(1);
                return true;
            default:
                copy(1);
                return true;
        }
    }

    constexpr bool parameters() {
        if (size_ == 0) {
            // "void (* name(int))(int)": the name of a function that returns a pointer to a function.
            skip(1);
            return true;
        }
        skip(group().size());
        if (name() == "decltype") {
            size_ = 0;
            return true;
        }
        return toNextScope();
    }

    constexpr bool lambda(std::string_view rest) {
        in_.remove_prefix(in_.find(rest) + rest.size());
        append("<lambda>");
        if (in_.starts_with('(')) skip(group().size());
        return toNextScope();
    }

    constexpr bool atOperator() const {
        bool const first = size_ == 0 || out_[size_ - 1] == ':';
        return first && in_.starts_with(operatorWord) && in_.size() > operatorWord.size() &&
               !isWord(in_[operatorWord.size()]);
    }
    constexpr bool copyOperator() {
        copy(operatorWord.size());
        if (in_.starts_with("()")) copy(2);
        bool const conversion = in_.starts_with(' ');
        while (!in_.empty() && in_.front() != '(') copy(conversion && in_.front() == '<' ? group().size() : 1);
        return true;
    }

    /// Behind the parameters of an enclosing function its qualifiers may stand before the next "::".
    constexpr bool toNextScope() {
        std::size_t const next = in_.find(scope);
        if (next == in_.npos) return false;
        for (char const c : in_.substr(0, next)) {
            if (!isWord(c) && c != ' ' && c != '&') return false;
        }
        skip(next);
        return true;
    }

    /// The text from an opening bracket to the closing one that belongs to it.
    constexpr std::string_view group() const {
        int angle = 0;
        int other = 0;
        for (std::size_t i = 0; i < in_.size(); ++i) {
            char const c = in_[i];
            other += isOneOf(c, "([{") - isOneOf(c, ")]}");
            if (other == 0) angle += (c == '<') - (c == '>' && in_[i - 1] != '-');
            if (other == 0 && angle == 0) return in_.substr(0, i + 1);
        }
        return in_;
    }

    constexpr void copy(std::size_t n) {
        append(in_.substr(0, n));
        skip(n);
    }
    constexpr void append(std::string_view s) {
        for (char const c : s) out_[size_++] = c;
    }
    constexpr void skip(std::size_t n) { in_.remove_prefix(n < in_.size() ? n : in_.size()); }
    constexpr std::string_view name() const { return {out_, size_}; }

    static constexpr bool isOneOf(char c, std::string_view set) { return set.find(c) != set.npos; }
    static constexpr bool isWord(char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
    }

    static constexpr std::string_view scope = "::";
    static constexpr std::string_view operatorWord = "operator";

    std::string_view in_;
    char * out_;
    std::size_t size_ = 0;
};

/// The name of a function as NUL-terminated text.
template <std::size_t N>
class FunctionName {
public:
    constexpr explicit FunctionName(char const (&pretty)[N]) {
        // Words of the return type may have left their ends behind the name.
        for (std::size_t i = FunctionNameScanner({pretty, N - 1}, text_).scan(); i < N; ++i) text_[i] = '\0';
    }
    constexpr char const * c_str() const noexcept { return text_; }

private:
    char text_[N] = {};
};

}  // namespace yon::detail

/// The qualified name of the enclosing function ("yon::pml::format") as a literal. Inside functions only.
#define YON_FUNC                                                                            \
    (__extension__({                                                                        \
        static constexpr ::yon::detail::FunctionName yonFunctionName_(__PRETTY_FUNCTION__); \
        yonFunctionName_.c_str();                                                           \
    }))

/// A location given by literals.
#define YON_LOCATION(file, line, func) (::yon::diagnostics::Location{file, line, func})

/// This location. Inside functions only.
#define YON_HERE YON_LOCATION(__FILE__, __LINE__, YON_FUNC)
