#include "yon/log/message_stream.h"

#include <algorithm>
#include <charconv>
#include <new>
#include <typeinfo>
#include <utility>

#include "yon/base/exception.h"
#include "yon/log/log_thread.h"

namespace yon::detail {

/// A growing output buffer that keeps its block from one message to the next.
class MessageBuffer final : public std::streambuf {
public:
    char const * c_str() noexcept {
        if (pptr() == nullptr) return "";
        *pptr() = '\0';
        return pbase();
    }
    /// Room for `n` more characters; `end` takes those over that were written.
    char * room(std::size_t n) {
        if (static_cast<std::size_t>(epptr() - pptr()) < n) grow(n);
        return pptr();
    }
    void end(char * p) noexcept { advance(static_cast<std::size_t>(p - pptr())); }
    void reset() {
        if (block_.size() > kept) block_ = std::string();
        open(0);
    }

    bool imbued = false;  ///< has got a locale

protected:
    void imbue(std::locale const &) override { imbued = true; }
    int_type overflow(int_type c) override {
        if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
        grow(1);
        return sputc(traits_type::to_char_type(c));
    }

private:
    static constexpr std::size_t kept = 64 * 1024;

    void grow(std::size_t n) {
        std::size_t const used = static_cast<std::size_t>(pptr() - pbase());
        block_.resize(std::max({std::size_t{256}, 2 * block_.size(), used + n + 1}));
        open(used);
    }
    /// Lays the room behind the first `used` characters open; one character stays for the terminator.
    void open(std::size_t used) {
        if (block_.empty()) return setp(nullptr, nullptr);
        setp(block_.data(), block_.data() + block_.size() - 1);
        advance(used);
    }
    void advance(std::size_t n) noexcept {
        constexpr int step = 1 << 30;
        for (; n > step; n -= step) pbump(step);
        pbump(static_cast<int>(n));
    }

    std::string block_;
};

namespace {

constexpr std::ios::fmtflags usualFlags = std::ios::skipws | std::ios::dec;
constexpr std::size_t digitsOfNumber = 20;

}  // namespace

MessageStream::MessageStream() : std::ostream(nullptr), buffer_(std::make_unique<MessageBuffer>()) {
    rdbuf(buffer_.get());
    imbue(std::locale::classic());
    buffer_->imbued = false;
}

MessageStream::~MessageStream() = default;

/// The buffer, if what is appended to it looks as the stream would print it; else null.
MessageBuffer * MessageStream::usual() noexcept {
    bool const plain =
        flags() == usualFlags && width() == 0 && good() && !buffer_->imbued && rdbuf() == buffer_.get();
    return plain ? buffer_.get() : nullptr;
}

/// Lets `write(p)` write at most `most` characters from `p` on, and return their end. As with any stream, what finds
/// no memory is not in the message.
template <class Write>
bool MessageStream::putUsual(std::size_t most, Write write) {
    MessageBuffer * const buffer = usual();
    if (buffer == nullptr) return false;
    try {
        buffer->end(write(buffer->room(most)));
    } catch (std::bad_alloc const &) {
        setstate(badbit);
    }
    return true;
}

bool MessageStream::put(istr text) {
    return putUsual(text.size(), [&](char * p) { return std::copy_n(text.data(), text.size(), p); });
}

bool MessageStream::put(longlong n) {
    return putUsual(digitsOfNumber, [&](char * p) { return std::to_chars(p, p + digitsOfNumber, n).ptr; });
}

bool MessageStream::put(ulonglong n) {
    return putUsual(digitsOfNumber, [&](char * p) { return std::to_chars(p, p + digitsOfNumber, n).ptr; });
}

// Copying a whole format takes longer than an average message.
void MessageStream::reset() {
    buffer_->reset();
    if (rdbuf() != buffer_.get()) rdbuf(buffer_.get());
    if (exceptions() != std::ios::goodbit) exceptions(std::ios::goodbit);
    if (!good()) clear();
    flags(usualFlags);
    precision(6);
    width(0);
    fill(' ');
    if (!buffer_->imbued) return;
    imbue(std::locale::classic());
    buffer_->imbued = false;
}

MessageLoan::MessageLoan() : thread_(LogThread::current()) {
    bool const spare = thread_ != nullptr && thread_->streams != nullptr;
    stream_ = spare ? std::exchange(thread_->streams, thread_->streams->next) : new MessageStream;
}

MessageLoan::~MessageLoan() {
    std::unique_ptr<MessageStream> stream(stream_);
    if (thread_ == nullptr) return;
    try {
        stream->reset();
        stream->next = thread_->streams;
        thread_->streams = stream.release();
    } catch (...) {
    }
}

char const * messageText(std::ostream & os) noexcept {
    std::streambuf * const buffer = os.rdbuf();
    if (buffer == nullptr || typeid(*buffer) != typeid(MessageBuffer)) return "";
    return static_cast<MessageBuffer *>(buffer)->c_str();
}

void writeCaught(logger & log, diagnostics::Location const & where, std::exception const & e) noexcept {
    try {
        MessageLoan message;
        MessageStream & os = message.stream();
        if (auto const * const own = dynamic_cast<Exception const *>(&e)) {
            os << *own;
        } else if (auto const * const base = dynamic_cast<ExceptionBase const *>(&e)) {
            os << *base;
        } else {
            os << e;
        }
        writeExcptLog(log, where.file, where.line, where.func, messageText(os));
    } catch (...) {
    }
}

}  // namespace yon::detail
