#include "yon/string/string_ref.h"

#include "yon/base/throw.h"
#include "yon/log/dumper.h"

namespace yon {

StringRef & StringRef::append(char const * s, ulong n) noexcept {
    if (ulong const count = std::min(left(), StrLen(s, n)); count != 0) {
        MemCopy(current(), s, count);
        cursor_ += count;
    }
    terminate();
    return *this;
}

StringRef & StringRef::fill(unsigned char c, ulong n) noexcept {
    if (ulong const count = std::min(left(), n); count != 0) {
        MemSet(current(), c, count);
        cursor_ += count;
    }
    return *this;
}

StringRef & StringRef::left(istr const & s) noexcept {
    if (s.empty() || !hasField()) return *this;
    ulong const count = std::min(s.size(), size_ - 1);
    MemCopy(addr_, s.data(), count);
    addr_[count] = ' ';
    return *this;
}

StringRef & StringRef::center(istr const & s) noexcept {
    if (s.empty() || !hasField()) return *this;
    ulong const count = std::min(s.size(), size_ - 2);
    ulong const start = (size_ - count) / 2;
    MemCopy(addr_ + start, s.data() + (s.size() - count) / 2, count);
    addr_[start - 1] = ' ';
    addr_[start + count] = ' ';
    return *this;
}

StringRef & StringRef::right(istr const & s) noexcept {
    if (s.empty() || !hasField()) return *this;
    ulong const count = std::min(size_ - 1, s.size());
    MemCopy(addr_ + (size_ - count), s.data() + (s.size() - count), count);
    addr_[size_ - count - 1] = ' ';
    return *this;
}

StringRef & StringRef::right(char c, ulong n) noexcept {
    if (n == 0 || !hasField()) return *this;
    ulong const count = std::min(size_ - 1, n);
    MemSet(addr_ + (size_ - count), c, count);
    addr_[size_ - count - 1] = ' ';
    return *this;
}

StringRef & StringRef::operator++() {
    moveBy(1, 195, "yon::StringRef::operator`++'");
    return *this;
}

StringRef & StringRef::advance(ulong n) {
    moveBy(n, 217, "yon::StringRef::advance");
    return *this;
}

void StringRef::terminate() noexcept {
    if (left() != 0) *current() = '\0';
}

void StringRef::moveBy(ulong n, unsigned int line, char const * func) {
    if (cursor_ > size_ || n > size_ - cursor_) {
        YON_THROW_AT(YON_LOCATION("include/yon/string/string_ref", line, func), OutOfRangeException);
    }
    cursor_ += n;
    terminate();
}

dumper & StringRef::dump(dumper & d) const {
    d.push("yon::StringRef", "@");
    d.field("addr_", static_cast<void const *>(addr_)).field("size_", size_).field("cursor_", cursor_);
    d.pop();
    return d;
}

std::ostream & StringRef::dump(std::ostream & os) const {
    dumper d(os, false);
    dump(d);
    return os;
}

}  // namespace yon
