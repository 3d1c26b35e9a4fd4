// `RecordBuffer`: the memory in which a record is built.
#pragma once

#include "yon/log/log_thread.h"

namespace yon {

/// A buffer of the calling thread for as long as a record is built and handed over. Buffers are used again, so that a
/// record costs no allocation; a record made meanwhile, by a callback, gets another one. In the order of scopes.
class RecordBuffer {
public:
    RecordBuffer() noexcept : thread_(LogThread::current()) {
        if (thread_ == nullptr) return;
        unsigned const depth = thread_->bufferDepth++;
        if (depth < LogThread::bufferCount) text_ = &thread_->buffers[depth];
    }
    RecordBuffer(RecordBuffer const &) = delete;
    RecordBuffer & operator=(RecordBuffer const &) = delete;
    ~RecordBuffer() {
        if (thread_ != nullptr) --thread_->bufferDepth;
        text_->reset();
        if (text_->capacity() > kept) StringBuffer().swap(*text_);
    }

    StringBuffer & text() noexcept { return *text_; }

    /// Whether the calling thread is within a record function.
    static bool inUse() noexcept {
        LogThread const * const thread = LogThread::existing();
        return thread != nullptr && thread->bufferDepth != 0;
    }

private:
    static constexpr ulong kept = 64 * 1024;

    LogThread * thread_;
    StringBuffer own_;
    StringBuffer * text_ = &own_;
};

}  // namespace yon
