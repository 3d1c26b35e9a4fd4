#include "yon/string/string_buffer.h"

#include <cstdlib>
#include <functional>
#include <new>
#include <stdexcept>

#include "yon/base/here.h"
#include "yon/base/leak_checker.h"
#include "yon/base/number_text.h"
#include "yon/log/dumper.h"
#include "yon/string/unicode.h"

namespace yon {

namespace {

constexpr ulong leastCapacity = 64;

template <class T>
StringBuffer & appendText(StringBuffer & buffer, T value) {
    char room[detail::numberRoom];
    return buffer.append(room, static_cast<ulong>(detail::formatNumber(room, value) - room));
}

}  // namespace

StringBuffer::~StringBuffer() {
    MemLeakChecker::pop(data_);
    std::free(data_);
}

StringBuffer & StringBuffer::appendGrowing(istr const & s) {
    // `s` may lie in the block, which may move.
    bool const inside = std::less_equal<>()(data_, s.data()) && std::less<>()(s.data(), data_ + size_);
    std::ptrdiff_t const offset = inside ? s.data() - data_ : 0;
    grow(s.size());
    return append(inside ? istr(data_ + offset, s.size()) : s);
}

StringBuffer & StringBuffer::appendWide(iwstr const & s) { return append(wstringToAnsi(s)); }
StringBuffer & StringBuffer::appendNumber(longlong value) { return appendText(*this, value); }
StringBuffer & StringBuffer::appendNumber(ulonglong value) { return appendText(*this, value); }
StringBuffer & StringBuffer::appendNumber(double value) { return appendText(*this, value); }

void StringBuffer::grow(ulong n) {
    if (n > npos - size_) throw std::length_error("yon::StringBuffer: longer than 32 bits can count");
    ulong const doubled = capacity_ > npos / 2 ? npos : 2 * capacity_;
    ulong const capacity = std::max({size_ + n, doubled, leastCapacity});
    diagnostics::Location const here = YON_HERE;
    // Forgotten first: as soon as it is free, another thread may get and register the old address.
    MemLeakChecker::pop(data_);
    void * const block = std::realloc(data_, capacity);
    if (block != nullptr) {
        data_ = static_cast<char *>(block);
        capacity_ = capacity;
    }
    MemLeakChecker::push(data_, here.file, here.line, here.func, capacity_);
    if (block == nullptr) throw std::bad_alloc();
}

dumper & StringBuffer::dump(dumper & d) const {
    d.push("yon::StringBuffer", "@");
    d.field("data_", static_cast<void const *>(data_)).field("size_", size_).field("capacity_", capacity_);
    d.pop();
    return d;
}

}  // namespace yon
