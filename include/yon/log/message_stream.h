// What the logging macros are made of.
#pragma once

#include <charconv>
#include <concepts>
#include <exception>
#include <initializer_list>
#include <ostream>
#include <string>

#include "yon/base/builtin_scalar.h"
#include "yon/base/diagnostics.h"
#include "yon/base/istr.h"
#include "yon/log/record.h"

namespace yon::detail {

/// A stream in which a message is built: one of the calling thread's, used again, so that a message costs no
/// allocation once it is warm. Starts with the usual format and the classic locale. A message that is built within
/// another one gets a stream of its own. Made and destroyed in one thread, in the order of scopes.
class YON_API MessageStream {
public:
    class Stream;

    MessageStream();
    MessageStream(MessageStream const &) = delete;
    MessageStream & operator=(MessageStream const &) = delete;
    ~MessageStream();

    std::ostream & stream() noexcept;

private:
    Stream * stream_;
};

/// Deletes a list of streams.
void deleteStreams(MessageStream::Stream * first) noexcept;

/// The NUL-terminated text of a message, of which `os` is the stream; valid until the `MessageStream` goes.
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
    MessageStream message;
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
            MessageStream message;
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

}  // namespace yon::detail
