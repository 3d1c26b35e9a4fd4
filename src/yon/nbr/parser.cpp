#include "yon/nbr/parser.h"

#include <memory>
#include <vector>

#include "yon/base/throw.h"
#include "yon/nbr/format.h"

namespace yon::nbr {

namespace {

constexpr char const * sourceFile = "src/yon/nbr/parser";
constexpr char const * parseFunction = "yon::nbr::parser::parseValue";
constexpr char const * readFunction = "yon::nbr::parser::readSimple";

/// Says why there is no value, to those who want to know.
[[gnu::cold]] std::nullptr_t trace(unsigned line, char const * func, char const * why) {
    if (diagnostics::categoryOn("TRACE")) {
        diagnostics::record(diagnostics::Level::debug, "TRACE", YON_LOCATION(sourceFile, line, func), why);
    }
    return nullptr;
}

template <class T>
void addTo(ComplexValue & parent, unsigned char tag, std::unique_ptr<T> value) {
    parent.add(tag, value.get());
    value.release();
}

}  // namespace

bool parser::atMarker(char bracket) const noexcept { return isMarker(at_, left(), bracket); }

ValueBase * parser::parseValue() {
    if (eof()) return trace(__LINE__, parseFunction, "empty iptr_");
    if (!atMarker('(')) return readSimple();
    at_ += markerSize;
    std::unique_ptr<ComplexValue> root(YON_NEW(ComplexValue)());
    ComplexValue * inner = root.get();
    std::vector<ComplexValue *> outer;  // the values around `inner`
    while (!eof()) {
        if (atMarker(')')) {
            at_ += markerSize;
            if (outer.empty()) break;
            inner = outer.back();
            outer.pop_back();
            continue;
        }
        auto const tag = static_cast<unsigned char>(*at_++);
        if (eof()) {
            trace(__LINE__, parseFunction, "eof: empty value");
        } else if (atMarker('(')) {
            at_ += markerSize;
            outer.push_back(inner);
            ComplexValue * const next = YON_NEW(ComplexValue)();
            addTo(*inner, tag, std::unique_ptr<ComplexValue>(next));
            inner = next;
        } else {
            addTo(*inner, tag, std::unique_ptr<SimpleValue>(readSimple()));
        }
    }
    return root.release();
}

SimpleValue * parser::readSimple() {
    if (eof()) return trace(__LINE__, readFunction, "eof: empty iptr_");
    auto const head = static_cast<unsigned char>(*at_++);
    if (head == 0) return trace(__LINE__, readFunction, "zero length of size");
    if (eof()) return trace(__LINE__, readFunction, "no data after length of size");
    if (head == 0xFF) return trace(__LINE__, readFunction, "eof: empty value");
    unsigned const lengthOfSize = head & 0x0F;
    if (lengthOfSize > mostSizeBytes) {
        YON_THROW_AT(YON_LOCATION(sourceFile, __LINE__, readFunction), yon::nbr::DecodeException, "lengthOfSize > 4");
    }
    if (left() < lengthOfSize) {
        at_ = end_;
        return trace(__LINE__, readFunction, "empty size");
    }
    auto const size = static_cast<ulong>(BinaryStream::readUint(istr(at_, lengthOfSize), lengthOfSize));
    at_ += lengthOfSize;
    if (lengthOfSize == 0) return trace(__LINE__, readFunction, "empty size");
    if (size == 0) return nullptr;
    if (eof()) return trace(__LINE__, readFunction, "no data after size");
    istr const data(at_, std::min(size, toLength(left())));
    at_ += data.size();
    return YON_NEW(SimpleValue)(data, (head & textMark) == textMark);
}

}  // namespace yon::nbr
