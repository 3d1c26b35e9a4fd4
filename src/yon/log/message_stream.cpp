#include "yon/log/message_stream.h"

#include <memory>
#include <typeinfo>
#include <utility>

#include "yon/base/exception.h"
#include "yon/log/log_thread.h"

namespace yon::detail {

namespace {

/// A growing output buffer that keeps its block from one message to the next.
class MessageBuffer final : public std::streambuf {
public:
    char const * c_str() noexcept {
        if (pptr() == nullptr) return "";
        *pptr() = '\0';
        return pbase();
    }
    void reset() {
        if (block_.size() > kept) block_ = std::string();
        open(0);
    }

    bool imbued = false;  ///< has got a locale

protected:
    void imbue(std::locale const &) override { imbued = true; }
    int_type overflow(int_type c) override {
        if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
        std::size_t const used = static_cast<std::size_t>(pptr() - pbase());
        block_.resize(std::max<std::size_t>(256, 2 * block_.size()));
        open(used);
        return sputc(traits_type::to_char_type(c));
    }

private:
    static constexpr std::size_t kept = 64 * 1024;

    /// Lays the room behind the first `used` characters open; one character stays for the terminator.
    void open(std::size_t used) {
        if (block_.empty()) return setp(nullptr, nullptr);
        setp(block_.data(), block_.data() + block_.size() - 1);
        for (; used > step; used -= step) pbump(step);
        pbump(static_cast<int>(used));
    }
    static constexpr int step = 1 << 30;

    std::string block_;
};

}  // namespace

class MessageStream::Stream {
public:
    Stream() : os_(&buffer_) {
        os_.imbue(std::locale::classic());
        buffer_.imbued = false;
    }

    std::ostream & os() noexcept { return os_; }
    /// Undoes what the last message did to text, state, format and locale. (Copying a whole format takes longer than
    /// an average message.)
    void reset() {
        buffer_.reset();
        os_.exceptions(std::ios::goodbit);
        os_.clear();
        os_.flags(std::ios::skipws | std::ios::dec);
        os_.precision(6);
        os_.width(0);
        os_.fill(' ');
        if (!buffer_.imbued) return;
        os_.imbue(std::locale::classic());
        buffer_.imbued = false;
    }

    Stream * next = nullptr;

private:
    MessageBuffer buffer_;
    std::ostream os_;
};

void deleteStreams(MessageStream::Stream * first) noexcept {
    while (first != nullptr) delete std::exchange(first, first->next);
}

MessageStream::MessageStream() {
    LogThread * const thread = LogThread::current();
    bool const spare = thread != nullptr && thread->streams != nullptr;
    stream_ = spare ? std::exchange(thread->streams, thread->streams->next) : new Stream;
}

MessageStream::~MessageStream() {
    LogThread * const thread = LogThread::current();
    std::unique_ptr<Stream> stream(stream_);
    if (thread == nullptr) return;
    try {
        stream->reset();
        stream->next = thread->streams;
        thread->streams = stream.release();
    } catch (...) {
    }
}

std::ostream & MessageStream::stream() noexcept { return stream_->os(); }

char const * messageText(std::ostream & os) noexcept {
    std::streambuf * const buffer = os.rdbuf();
    if (buffer == nullptr || typeid(*buffer) != typeid(MessageBuffer)) return "";
    return static_cast<MessageBuffer *>(buffer)->c_str();
}

void writeCaught(logger & log, diagnostics::Location const & where, std::exception const & e) noexcept {
    try {
        MessageStream message;
        std::ostream & os = message.stream();
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
