#include "yon/log/dumper.h"

#include <iomanip>
#include <sstream>

#include "yon/base/located_new.h"
#include "yon/base/throw.h"
#include "yon/base/time.h"

namespace yon {

namespace {

/// Of a text, so that a large buffer cannot flood a log.
constexpr ulong maxShown = 256;

dumper::Config makeConfig(bool compact, char const * lineSeparator, char const * indentSeparator, unsigned level,
                          char const * eolSeparator) {
    return {compact, lineSeparator, indentSeparator, level, eolSeparator};
}

}  // namespace

dumper::dumper(std::ostream & os, bool compact, char const * lineSeparator, char const * indentSeparator,
               unsigned level, char const * eolSeparator)
    : dumper(os, makeConfig(compact, lineSeparator, indentSeparator, level, eolSeparator)) {}

dumper::dumper(std::ostream & os, Config const & cfg) : cfg_(cfg), os_(&os), owned_(false) {}

dumper::dumper(bool compact, char const * lineSeparator, char const * indentSeparator, unsigned level,
               char const * eolSeparator)
    : dumper(makeConfig(compact, lineSeparator, indentSeparator, level, eolSeparator)) {}

dumper::dumper(Config const & cfg) : cfg_(cfg), os_(YON_NEW(std::ostringstream)()), owned_(true) {}

dumper::~dumper() {
    if (owned_) YON_DELETE(os_);
}

dumper & dumper::compact(bool compact) noexcept {
    cfg_.compact = compact;
    return *this;
}

dumper & dumper::lineSeparator(String const & text) {
    cfg_.lineSeparator = text;
    return *this;
}

dumper & dumper::indentSeparator(String const & text) {
    cfg_.indentSeparator = text;
    return *this;
}

dumper & dumper::eolSeparator(String const & text) {
    cfg_.eolSeparator = text;
    return *this;
}

dumper & dumper::level(unsigned level) noexcept {
    cfg_.level = level;
    return *this;
}

dumper & dumper::raw(istr text) {
    if (!text.empty()) os_->write(text.data(), static_cast<std::streamsize>(text.size()));
    return *this;
}

dumper & dumper::nl() {
    raw("\n");
    os_->flush();
    return *this;
}

void dumper::writeIndent() {
    raw(cfg_.lineSeparator);
    for (unsigned i = 0; i < cfg_.level; ++i) raw(cfg_.indentSeparator);
}

dumper & dumper::indent() {
    if (!cfg_.compact) {
        writeIndent();
    } else if (first_) {
        first_ = false;
    } else {
        raw(", ");
    }
    return *this;
}

dumper & dumper::endline() { return cfg_.compact ? *this : raw(cfg_.eolSeparator); }

void dumper::push(istr name, istr prefix) {
    if (cfg_.compact) {
        raw("{");
    } else {
        if (!name.empty()) raw(prefix).raw(name).raw(" ");
        raw("{").raw(cfg_.eolSeparator);
        ++cfg_.level;
    }
    savedFirst_ = first_;
    first_ = true;
}

void dumper::pop() {
    first_ = savedFirst_;
    if (!cfg_.compact) {
        raw(cfg_.eolSeparator);
        if (cfg_.level > 0) --cfg_.level;
        writeIndent();
    }
    raw("}");
}

dumper & dumper::beginField(istr name) {
    indent();
    return cfg_.compact ? *this : raw(name).raw(" = ");
}

String dumper::text() const { return owned_ ? static_cast<std::ostringstream const &>(*os_).str() : std::string(); }

String dumper::str() const {
    if (!owned_) {
        YON_THROW_AT(YON_LOCATION("src/yon/log/log_dumper", __LINE__, "yon::dumper::str"),
                     UnsupportedFunctionException);
    }
    return text();
}

dumper & dumper::dump(dumper & other) const {
    other.push("yon::dumper", "@");
    other.field("str()", text())
        .field("lineSeparator()", lineSeparator())
        .field("indentSeparator()", indentSeparator())
        .field("eolSeparator()", eolSeparator())
        .field("level()", level())
        .field("compact()", compact())
        .field("first_", first_)
        .field("owned_", owned_);
    other.pop();
    return other;
}

dumper & dumper::quoted(char c) {
    raw("'");
    Print(*os_, c);
    return raw("'");
}

dumper & dumper::operator<<(istr const & text) {
    if (text.empty()) return *this;
    // The text is put together here and goes to the stream in one piece, or in one for each line.
    char room[6 * maxShown + 2];
    char * out = room;
    auto const add = [&out](std::string_view s) { out = std::copy(s.begin(), s.end(), out); };
    bool escaping = false;
    add("\"");
    for (char c : text.leftstr(maxShown)) {
        auto const byte = static_cast<unsigned char>(c);
        if (c == '\n') {
            raw(istr(room, static_cast<ulong>(out - room)));
            out = room;
            writeIndent();
        } else if (CharIsPrint(c)) {
            if (escaping) add("}");
            escaping = false;
            *out++ = c;
        } else {
            if (!escaping) add("\\x{");
            escaping = true;
            *out++ = HexToChar(byte >> 4);
            *out++ = HexToChar(byte);
        }
    }
    if (escaping) add("}");
    raw(istr(room, static_cast<ulong>(out - room)));
    *os_ << std::dec << std::nouppercase << std::setfill(' ');
    if (text.size() > maxShown) *os_ << "<omit data up to " << text.size() << '>';
    return raw("\"");
}

dumper & dumper::operator<<(iwstr const & text) {
    raw("\"");
    *os_ << text;
    return raw("\"");
}

dumper & dumper::operator<<(Time const & time) { return *this << istr(time.toDateTime()); }

dumper & dumper::write(iwstr const & text) {
    *os_ << text;
    return *this;
}

dumper & dumper::write(Time const & time) { return raw(time.toDateTime()); }

}  // namespace yon
