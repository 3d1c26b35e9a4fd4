#include "yon/util/binary_in_stream.h"

#include <string>

#include "yon/base/throw.h"

namespace yon {

namespace {

constexpr char const * sourceFile = "src/yon/util/BinaryInStream";
constexpr char const * functionName = "yon::BinaryInStream::read";
constexpr unsigned mostSizeBytes = 4;

[[noreturn, gnu::cold]] void fail(unsigned line, char const * what) {
    YON_THROW_AT(YON_LOCATION(sourceFile, line, functionName), BinaryDecodeException, what);
}

[[gnu::cold]] void notice(unsigned line, ulong got, ulong expected) {
    diagnostics::record(
        diagnostics::Level::info, "NOTICE", YON_LOCATION(sourceFile, line, functionName),
        istr("uncompleted data size " + std::to_string(got) + ", expected " + std::to_string(expected)));
}

}  // namespace

ulonglong BinaryInStream::readUnusualBits(unsigned width) {
    unsigned const los = readLos();
    if (los == 0 || eof()) return 0;
    if (los != 1) fail(__LINE__, "invalid los");
    unsigned const size = readLos();
    if (size > sizeof(ulonglong)) fail(__LINE__, "invalid size");
    istr const data = take(std::min<ulong>(size, left()));
    if (data.size() < size) {
        notice(__LINE__, data.size(), size);
        return 0;
    }
    return BinaryStream::readUint(data, width);
}

istr BinaryInStream::readData() {
    unsigned const los = readLos();
    if (los > mostSizeBytes) fail(__LINE__, "invalid los");
    auto const size = static_cast<ulong>(BinaryStream::readUint(take(std::min<ulong>(los, left())), mostSizeBytes));
    istr const data = take(std::min(size, left()));
    if (data.size() < size) notice(__LINE__, data.size(), size);
    return data;
}

/// The data of the next item, all of which is there; `next` is behind it.
istr BinaryInStream::peekStrictly(char const *& next) const {
    BinaryInStream ahead(*this);
    if (ahead.eof()) fail(__LINE__, "no item");
    unsigned const los = ahead.readLos();
    if (los == 0) fail(__LINE__, "null item");
    if (los > mostSizeBytes) fail(__LINE__, "invalid los");
    if (ahead.left() < los) fail(__LINE__, "incomplete size");
    auto const size = static_cast<ulong>(BinaryStream::readUint(ahead.take(los), mostSizeBytes));
    if (ahead.left() < size) fail(__LINE__, "incomplete data");
    istr const data = ahead.take(size);
    next = ahead.at_;
    return data;
}

ulonglong BinaryInStream::readBitsStrictly(unsigned width) {
    char const * next = nullptr;
    istr const data = peekStrictly(next);
    if (data.begin() != at_ + 2) fail(__LINE__, "invalid los");
    if (data.empty()) fail(__LINE__, "empty number");
    if (data.size() > width) fail(__LINE__, "too wide a number");
    at_ = next;
    return BinaryStream::readUint(data, width);
}

BinaryInStream & BinaryInStream::read(Time & time) {
    longlong microseconds = 0;
    time = Time();
    read(microseconds);
    time = Time(microseconds);
    return *this;
}

BinaryInStream & BinaryInStream::readStrict(Time & time) {
    longlong microseconds = 0;
    readStrict(microseconds);
    time = Time(microseconds);
    return *this;
}

BinaryInStream & BinaryInStream::read(Bytes & bytes) {
    bytes = readData();
    return *this;
}

BinaryInStream & BinaryInStream::read(istr & bytes) {
    bytes = readData();
    return *this;
}

BinaryInStream & BinaryInStream::read(std::string & text) {
    detail::textFromItem(readData(), text);
    return *this;
}

BinaryInStream & BinaryInStream::read(wstring & text) {
    detail::textFromItem(readData(), text);
    return *this;
}

BinaryInStream & BinaryInStream::readStrict(istr & bytes) {
    char const * next = nullptr;
    bytes = peekStrictly(next);
    at_ = next;
    return *this;
}

BinaryInStream & BinaryInStream::readStrict(Bytes & bytes) {
    istr data;
    readStrict(data);
    bytes = data;
    return *this;
}

template <class T>
BinaryInStream & BinaryInStream::readTextStrictly(T & text) {
    char const * next = nullptr;
    detail::textFromItem(peekStrictly(next), text);
    at_ = next;
    return *this;
}

BinaryInStream & BinaryInStream::readStrict(std::string & text) { return readTextStrictly(text); }
BinaryInStream & BinaryInStream::readStrict(wstring & text) { return readTextStrictly(text); }

BinaryInStream & BinaryInStream::readRaw(char * out, ulong * n) noexcept {
    if (n == nullptr) return *this;
    istr const data = take(out == nullptr ? 0 : std::min(*n, left()));
    if (!data.empty()) std::memcpy(out, data.data(), data.size());
    *n = data.size();
    return *this;
}

}  // namespace yon
