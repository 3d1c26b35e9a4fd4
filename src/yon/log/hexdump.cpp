#include "yon/log/hexdump.h"

#include <iomanip>
#include <ostream>

#include "yon/log/dumper.h"

namespace yon {

namespace {

constexpr ulong maxShown = 256;
constexpr ulong rowSize = 16;

char * putByte(char * out, char byte) noexcept {
    auto const value = static_cast<unsigned char>(byte);
    *out++ = HexToChar(value >> 4);
    *out++ = HexToChar(value);
    return out;
}

std::ostream & hexadecimal(std::ostream & os) { return os << std::uppercase << std::hex << std::setfill('0'); }

std::ostream & decimal(std::ostream & os) { return os << std::dec << std::nouppercase << std::setfill(' '); }

std::ostream & startRow(std::ostream & os, ulong offset) { return os << '\n' << std::setw(6) << offset << ": "; }

/// The byte columns of one row, blank where there is no byte, up to the text column.
void writeColumns(std::ostream & os, istr row) {
    char room[3 * rowSize + 1];
    std::fill(std::begin(room), std::end(room), ' ');
    char * out = room;
    for (char c : row) out = putByte(out, c) + 1;
    os.write(room, sizeof room);
}

}  // namespace

std::ostream & write_hex::operator()(std::ostream & os) const {
    char room[3 * maxShown];
    char * out = room;
    for (char c : data_.leftstr(maxShown)) {
        if (out != room) *out++ = ' ';
        out = putByte(out, c);
    }
    os.write(room, out - room);
    decimal(os);
    if (data_.size() > maxShown) os << "<omit data up to " << data_.size() << '>';
    return os;
}

dumper & write_hex::operator()(dumper & d) const {
    (*this)(d.internal_stream());
    return d;
}

dump_hex_base::~dump_hex_base() = default;

void dump_hex_base::writeText(std::ostream &, char) const {}

std::ostream & dump_hex_base::operator()(std::ostream & os) const {
    os << "\n        00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F  0123456789ABCDEF\n" << std::string(73, '-');
    hexadecimal(os);
    istr const shown = data_.leftstr(maxShown);
    for (ulong r = 0; r < shown.size(); r += rowSize) {
        istr const row = shown.substr(r, rowSize);
        startRow(os, r);
        writeColumns(os, row);
        for (char c : row) writeText(os, c);
    }
    // The length is hexadecimal here, as the offsets are.
    if (data_.size() > maxShown) startRow(os, maxShown) << "<omit data up to " << data_.size() << '>';
    return decimal(os);
}

std::ostream & operator<<(std::ostream & os, show_printable const & s) {
    return os.put(CharIsPrint(s.c_) ? s.c_ : '.');
}

dumper & hexdata::operator()(dumper & d) const {
    if (d.compact()) return write_hex(data_)(d);
    dump_hex<show_printable> const table(data_);
    table(d.internal_stream());
    return d;
}

std::ostream & hexdata::operator()(std::ostream & os) const { return write_hex(data_)(os); }

dumper & rawstring::operator()(dumper & d) const { return d.raw(text_); }

}  // namespace yon
