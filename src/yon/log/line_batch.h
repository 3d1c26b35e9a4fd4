// `LineBatch`: lines that are written together.
#pragma once

#include <string>
#include <vector>

#include "yon/base/istr.h"

namespace yon {

/// Lines one behind the other in one block, and the length of each. Keeps its memory for the next lines. One thread
/// at a time.
class LineBatch {
public:
    bool empty() const noexcept { return lines() == 0; }
    std::size_t lines() const noexcept { return lengths_.size() - firstLine_; }
    std::size_t bytes() const noexcept { return bytes_.size() - firstByte_; }
    char const * data() const noexcept { return bytes_.data() + firstByte_; }
    ulong length(std::size_t line) const noexcept { return lengths_[firstLine_ + line]; }

    /// Raises `std::bad_alloc` and leaves the batch as it was when the memory is used up.
    void append(istr line) {
        if (lengths_.size() == lengths_.capacity()) lengths_.reserve(2 * lengths_.size() + fewLines);
        bytes_.append(line.data(), line.size());
        lengths_.push_back(line.size());
    }

    /// Drops the oldest lines until at most so many bytes are left; returns how many lines that were.
    std::size_t dropOldest(std::size_t limit) noexcept {
        std::size_t const before = firstLine_;
        while (bytes() > limit) firstByte_ += lengths_[firstLine_++];
        std::size_t const dropped = firstLine_ - before;
        // The room in front is taken back when it is as large as what stays.
        if (firstByte_ > bytes()) {
            bytes_.erase(0, firstByte_);
            lengths_.erase(lengths_.begin(), lengths_.begin() + static_cast<std::ptrdiff_t>(firstLine_));
            firstByte_ = firstLine_ = 0;
        }
        return dropped;
    }

    /// Frees nothing.
    void clear() noexcept {
        bytes_.clear();
        lengths_.clear();
        firstByte_ = firstLine_ = 0;
    }
    /// Gives memory back that only a flood of lines has needed. REQUIRES: an empty batch.
    void shrink() noexcept {
        if (bytes_.capacity() > usualBytes) std::string().swap(bytes_);
        if (lengths_.capacity() > usualBytes / sizeof(ulong)) std::vector<ulong>().swap(lengths_);
    }

private:
    static constexpr std::size_t fewLines = 128;
    static constexpr std::size_t usualBytes = 1u << 20;

    std::string bytes_;
    std::vector<ulong> lengths_;
    std::size_t firstByte_ = 0;
    std::size_t firstLine_ = 0;
};

}  // namespace yon
