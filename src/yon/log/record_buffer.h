// `RecordBuffer`: the memory in which a record is built.
#pragma once

#include "yon/log/per_thread.h"
#include "yon/string/string_buffer.h"

namespace yon {

/// The calling thread's buffer for as long as a record is built and handed over. It is used again, so that a record
/// costs no allocation; a record made meanwhile (by a callback) gets one of its own.
class RecordBuffer {
public:
    RecordBuffer() noexcept : spare_(PerThread<StringBuffer>::get()) {
        ++depth_;
        if (spare_ != nullptr) text_.swap(*spare_);
    }
    RecordBuffer(RecordBuffer const &) = delete;
    RecordBuffer & operator=(RecordBuffer const &) = delete;
    ~RecordBuffer() {
        --depth_;
        if (spare_ != nullptr && text_.capacity() <= kept) spare_->swap(text_.reset());
    }

    StringBuffer & text() noexcept { return text_; }

    /// Whether the calling thread is within a record function.
    static bool inUse() noexcept { return depth_ != 0; }

private:
    static constexpr ulong kept = 64 * 1024;
    static inline constinit thread_local unsigned depth_ = 0;

    StringBuffer * spare_;
    StringBuffer text_;
};

}  // namespace yon
