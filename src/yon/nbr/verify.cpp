#include "yon/nbr/verify.h"

#include "yon/nbr/format.h"
#include "yon/nbr/scanner.h"
#include "yon/string/utf.h"
#include "yon/util/binary_stream.h"

namespace yon::nbr {

bool Scanner::atMarker(char bracket) const noexcept { return isMarker(bytes_.data() + at_, left(), bracket); }

Token Scanner::fault(ulong offset, char const * what) const noexcept {
    return {Token::defect, offset, -1, 0, istr(), what};
}

Token Scanner::next() {
    ulong const start = at_;
    int tag = -1;
    if (!open_.empty()) {
        if (left() == 0) return fault(open_.back(), "this complex value is not closed");
        if (atMarker(')')) {
            at_ += markerSize;
            open_.pop_back();
            return {Token::end, start, -1, 0, istr(), nullptr};
        }
        tag = static_cast<unsigned char>(bytes_[at_++]);
        if (left() == 0) return fault(start, "this tag has no value");
    }
    if (bytes_.empty()) return fault(start, "there is no value");
    if (left() == 0) return {Token::done, start, -1, 0, istr(), nullptr};
    if (!atMarker('(')) return item(tag);
    open_.push_back(at_);
    at_ += markerSize;
    return {Token::begin, open_.back(), tag, 0, istr(), nullptr};
}

Token Scanner::item(int tag) {
    ulong const start = at_;
    auto const head = static_cast<unsigned char>(bytes_[at_++]);
    unsigned const lengthOfSize = head & 0x0F;
    unsigned const mark = head & textMark;
    if (head == 0) return {Token::item, start, tag, head, istr(), nullptr};
    if (head == 0xFF) return fault(start, "no value begins with FF here");
    if (lengthOfSize > mostSizeBytes) return fault(start, "the length of the size is above 4");
    if (lengthOfSize == 0 || (mark != 0 && mark != textMark)) return fault(start, "this head is unknown");
    if (left() < lengthOfSize) return fault(at_, "the size is cut off");
    auto const size = static_cast<ulong>(BinaryStream::readUint(bytes_.substr(at_, lengthOfSize), lengthOfSize));
    at_ += lengthOfSize;
    if (left() < size) return fault(at_, "the data is cut off");
    istr const data = bytes_.substr(at_, size);
    if (mark != 0 && yon::detail::checkUtf8(data) != ConversionResult::ok) {
        return fault(at_, "this text is not UTF-8");
    }
    at_ += size;
    return {Token::item, start, tag, head, data, nullptr};
}

std::optional<Defect> verify(istr bytes) {
    Scanner scanner(bytes);
    for (;;) {
        Token const token = scanner.next();
        if (token.what == Token::done) return std::nullopt;
        if (token.what == Token::defect) return Defect{token.offset, token.fault};
    }
}

}  // namespace yon::nbr
