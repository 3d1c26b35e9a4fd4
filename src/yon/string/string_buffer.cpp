#include "yon/string/string_buffer.h"

#include <stdexcept>

#include "yon/base/here.h"
#include "yon/base/leak_checker.h"
#include "yon/base/number_text.h"
#include "yon/log/dumper.h"
#include "yon/string/unicode.h"

namespace yon {

namespace {

constexpr ulong leastCapacity = 64;

void release(char * block) noexcept {
    MemLeakChecker::pop(block);
    delete[] block;
}

template <class T>
StringBuffer & appendText(StringBuffer & buffer, T value) {
    char room[detail::numberRoom];
    return buffer.append(room, static_cast<ulong>(detail::formatNumber(room, value) - room));
}

}  // namespace

StringBuffer::~StringBuffer() { release(data_); }

StringBuffer & StringBuffer::appendGrowing(istr const & s) {
    // The old block goes last: `s` may lie in it.
    char * const old = newBlock(s.size());
    append(s);
    release(old);
    return *this;
}

StringBuffer & StringBuffer::appendWide(iwstr const & s) { return append(wstringToAnsi(s)); }
StringBuffer & StringBuffer::appendNumber(longlong value) { return appendText(*this, value); }
StringBuffer & StringBuffer::appendNumber(ulonglong value) { return appendText(*this, value); }
StringBuffer & StringBuffer::appendNumber(double value) { return appendText(*this, value); }

void StringBuffer::grow(ulong n) { release(newBlock(n)); }

char * StringBuffer::newBlock(ulong n) {
    if (n > npos - size_) throw std::length_error("yon::StringBuffer: longer than 32 bits can count");
    ulong const doubled = capacity_ > npos / 2 ? npos : 2 * capacity_;
    ulong const capacity = std::max({size_ + n, doubled, leastCapacity});
    char * const block = new char[capacity];
    diagnostics::Location const here = YON_HERE;
    MemLeakChecker::push(block, here.file, here.line, here.func, capacity);
    if (size_ != 0) std::memcpy(block, data_, size_);
    capacity_ = capacity;
    return std::exchange(data_, block);
}

dumper & StringBuffer::dump(dumper & d) const {
    d.push("yon::StringBuffer", "@");
    d.field("data_", static_cast<void const *>(data_)).field("size_", size_).field("capacity_", capacity_);
    d.pop();
    return d;
}

}  // namespace yon
