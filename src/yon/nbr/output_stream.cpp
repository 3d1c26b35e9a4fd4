#include "yon/nbr/output_stream.h"

#include "yon/base/throw.h"
#include "yon/log/dumper.h"
#include "yon/nbr/format.h"

namespace yon::nbr {

/// Calls `write(tag)`, of an element behind its tag; when it fails nothing is written.
template <class Write>
OutputStream & OutputStream::writeElement(Write write) {
    if (open_ == 0) {
        write(unset);
        return *this;
    }
    ulong const size = str().size();
    int const tag = tag_;
    try {
        write(writeTag());
    } catch (...) {
        items_.buffer().truncate(size);
        tag_ = tag;
        throw;
    }
    return *this;
}

OutputStream & OutputStream::operator<<(istr const & bytes) {
    return writeElement([&](int tag) {
        bool const likeMarker = tag == noTag && bytes.size() == markerLikeSize;
        items_.bytes(bytes, 0, likeMarker ? 2 : 1);
    });
}

OutputStream & OutputStream::writeText(istr text) {
    return writeElement([&](int) { items_.ansi(text, textMark); });
}

OutputStream & OutputStream::operator<<(iwstr const & text) {
    return writeElement([&](int) { items_.wide(text, textMark); });
}

OutputStream & OutputStream::operator<<(null_type) {
    return writeElement([&](int) { items_.buffer().append('\0'); });
}

OutputStream & OutputStream::beginComplex() {
    writeElement([&](int) { items_.buffer().append(istr(beginMarker, markerSize)); });
    ++open_;
    return *this;
}

OutputStream & OutputStream::endComplex() {
    if (open_ == 0) YON_THROW(UnsupportedFunctionException, "no complex value is open");
    if (tag_ != unset) YON_THROW(UnsupportedFunctionException, "the tag has no value");
    items_.buffer().append(istr(endMarker, markerSize));
    --open_;
    return *this;
}

OutputStream & OutputStream::tag(unsigned n) {
    if (open_ == 0) YON_THROW(UnsupportedFunctionException, "no complex value is open");
    if (tag_ != unset) YON_THROW(UnsupportedFunctionException, "the tag has no value");
    if (n > noTag) YON_THROW(OutOfRangeException, "tags go up to 255");
    tag_ = static_cast<int>(n);
    return *this;
}

OutputStream & OutputStream::writeRaw(istr bytes) {
    auto const write = [&](int) { items_.buffer().append(bytes); };
    if (tag_ != unset) return writeElement(write);
    write(unset);
    return *this;
}

void OutputStream::reset() noexcept {
    items_.buffer().reset();
    open_ = 0;
    tag_ = unset;
}

dumper & OutputStream::dump(dumper & d) const {
    d.push("yon::nbr::OutputStream", "@");
    d.field("str()", str()).field("open_", open_).field("tag_", tag_);
    d.pop();
    return d;
}

}  // namespace yon::nbr
