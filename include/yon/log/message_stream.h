// What the logging macros are made of.
#pragma once

#include <charconv>
#include <concepts>
#include <exception>
#include <initializer_list>
#include <memory>
#include <ostream>
#include <string>

#include "yon/base/builtin_scalar.h"
#include "yon/base/diagnostics.h"
#include "yon/base/istr.h"
#include "yon/base/string.h"
#include "yon/log/record.h"

namespace yon {

struct LogThread;

namespace detail {

class MessageBuffer;

template <class T>
concept PlainNumber = BuiltinScalar<T> && std::integral<T>;

template <class T>
concept PlainText = !NoneOf<std::decay_t<T>, char const *, char *, istr, String, std::string, std::string_view>;

/// The stream of a message. Whole numbers, characters and plain texts, most of what messages consist of, go straight
/// to its buffer while its format and locale are the usual ones; everything else finds a stream like any other.
class YON_API MessageStream : public std::ostream {
public:
    MessageStream();
    ~MessageStream() override;

    /// Append as the stream would; false, with nothing appended, where format, locale or state ask for more.
    bool put(istr text);
    bool put(longlong n);
    bool put(ulonglong n);

    template <PlainNumber T>
    friend MessageStream & operator<<(MessageStream & s, T value) {
        bool done = false;
        if constexpr (CharacterType<T>) {
            char const c = static_cast<char>(value);
            done = s.put(istr(&c, 1));
        } else {
            done = s.put(static_cast<std::conditional_t<std::is_signed_v<T>, longlong, ulonglong>>(value));
        }
        if (!done) static_cast<std::ostream &>(s) << value;
        return s;
    }

    template <PlainText T>
    friend MessageStream & operator<<(MessageStream & s, T const & text) {
        if (!s.put(istr(text))) static_cast<std::ostream &>(s) << text;
        return s;
    }

    /// Undoes what the last message did to text, state, format and locale.
    void reset();

    MessageStream * next = nullptr;  ///< in a list of those not in use

private:
    MessageBuffer * usual() noexcept;
    template <class Write>
    bool putUsual(std::size_t most, Write write);

    std::unique_ptr<MessageBuffer> buffer_;
};

/// Lends a stream of the calling thread's, which is used again, so that a message costs no allocation once it is
/// warm. It starts with the usual format and the classic locale. A message that is built within another one gets a
/// stream of its own. Made and destroyed in one thread, in the order of scopes.
class YON_API MessageLoan {
public:
    MessageLoan();
    MessageLoan(MessageLoan const &) = delete;
    MessageLoan & operator=(MessageLoan const &) = delete;
    ~MessageLoan();

    MessageStream & stream() noexcept { return *stream_; }

private:
    LogThread * thread_;
    MessageStream * stream_;
};

/// The NUL-terminated text of a message, of which `os` is the stream; valid until the `MessageLoan` goes.
YON_API char const * messageText(std::ostream & os) noexcept;

/// The records of conditions that do not hold, with texts of any kind.
YON_API void writeAssertFailure(logger & log, istr condition, diagnostics::Location const & where,
                                istr willDo) noexcept;
YON_API void writeEnsureFailure(logger & log, istr condition, diagnostics::Location const & where,
                                istr willDo) noexcept;

/// The record of a caught object: an exception prints itself, by its own class.
YON_API void writeCaught(logger & log, diagnostics::Location const & where, std::exception const & e) noexcept;
template <class E>
requires(!std::derived_from<E, std::exception>)  //
    void writeCaught(logger & log, diagnostics::Location const & where, E const & e) {
    MessageLoan message;
    writeExcptLog(log, where.file, where.line, where.func, messageText(message.stream() << e));
}

/// A key or a value of an event as text: text as it is, numbers so that they are read back exactly, anything else as
/// a stream prints it.
class EventText {
public:
    template <class T>
    EventText(T const & value) {
        if constexpr (std::convertible_to<T const &, istr>) {
            text_ = std::string_view(istr(value));
        } else if constexpr (CharacterType<T>) {
            text_ = static_cast<char>(value);
        } else if constexpr (std::same_as<T, bool>) {
            text_ = value ? '1' : '0';
        } else if constexpr (BuiltinScalar<T>) {
            char digits[32];
            text_.assign(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
        } else {
            MessageLoan message;
            text_ = messageText(message.stream() << value);
        }
    }
    std::string const & text() const noexcept { return text_; }

private:
    std::string text_;
};

YON_API void writeEventRecord(logger & log, istr name, std::initializer_list<EventText> keysAndValues) noexcept;

/// Writes one line of pml: the node `name` with a child for each key and value.
template <class... KeysAndValues>
void writeEvent(logger & log, istr name, KeysAndValues const &... keysAndValues) {
    static_assert(sizeof...(keysAndValues) % 2 == 0, "an event takes a value for each key");
    writeEventRecord(log, name, {EventText(keysAndValues)...});
}

}  // namespace detail

}  // namespace yon
