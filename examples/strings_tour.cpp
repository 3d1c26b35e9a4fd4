// A tour of the strings. docs/strings.md quotes the functions below.
#include <iostream>
#include <list>

#include "yon/yon.h"

using yon::Bytes;
using yon::istr;
using yon::Printf;
using yon::String;
using yon::StringBuffer;
using yon::StringRef;
using yon::StringSlice;

namespace {

// A function that takes text takes a view, and gets it from whatever the caller has.
yon::ulong words(istr text) {
    yon::ulong n = 0;
    for (istr rest = text.trimLeft(); !rest.empty(); ++n) {
        yon::ulong const end = rest.find(' ');
        rest = end == yon::npos ? istr() : rest.substr(end).trimLeft();
    }
    return n;
}

bool views() {
    std::string const standard("three small words");
    std::cout << words("two words") << words(standard) << words(String("one")) << words(nullptr) << '\n';
    istr const file = "report.2024.txt";
    std::cout << file.leftstr(file.find('.')) << ' ' << file.substr(file.rfind('.')) << '\n';
    return words(standard) == 3 && words(nullptr) == 0 && file.beginWith("report") && file.endWith(".txt");
}

bool ownedText() {
    String name = istr("alpha beta").leftstr(5);  // a view is copied where a String is made of it
    name += '-';
    name += istr("gamma");
    Bytes packet;  // bytes, zeros among them, without a terminator
    packet.append(istr("\x01\x00\x02", 3)).append(name);
    std::cout << name << ", " << packet.size() << " bytes\n";
    return name == "alpha-gamma" && packet.size() == 14 && packet[2] == 2;
}

bool growingBuffer() {
    StringBuffer line;
    for (int i = 1; i <= 3; ++i) line.append("field ").append(i).append('=').append(i * 0.5).append("; ");
    std::cout << line.str() << '\n';
    istr const text = line.str();  // valid until the buffer changes
    return text == "field 1=0.5; field 2=1; field 3=1.5; ";
}

bool fields() {
    char room[24];
    StringRef row(room, sizeof room);  // somebody else's buffer: nothing is allocated, nothing written behind it
    row.fill('.', sizeof room);
    row.left("name").center("size").right("date");
    std::cout << row << '\n';
    char small[8];
    StringRef cut(small, sizeof small);
    cut << "longer than the room";
    std::cout << cut << '\n';
    return istr(row) == "name .... size .... date" && istr(cut) == "longer t";
}

bool reading() {
    StringSlice s(istr("\x45\x00 rest", 7));
    unsigned char version = 0;
    yon::ByteRef(version, 0xF0)(s);  // a byte, of which some bits are wanted
    s.advance(2);
    std::cout << int{version} << ", " << s.rest() << ", " << s.left() << " left\n";
    try {
        s.advance(5);
    } catch (yon::OutOfRangeException const & error) {
        std::cout << error.what() << '\n';
    }
    return version == 0x40 && s.rest() == "rest";  // the cursor stayed
}

bool formatting() {
    String const line = Printf("%-8s|%5d|%08.3f|%x", String("left"), -42, 3.14159, 255u);
    std::cout << line << '\n';
    try {
        std::cout << Printf("%d items", "many") << '\n';
    } catch (yon::InvalidDataException const & error) {
        std::cout << error.what() << '\n';
    }
    return line == "left    |  -42|0003.142|ff";
}

bool encodings() {
    istr const utf8 = "Gr\xC3\xBC\xC3\x9F";
    yon::wstring const wide = yon::utf8ToWstring(utf8);  // UTF-16
    std::cout << utf8.size() << " bytes, " << wide.size() << " UTF-16 units\n";
    try {
        yon::utf8ToWstring("\xC3");
    } catch (yon::UTFConversionException const & error) {
        std::cout << error.result() << '\n';
    }
    Bytes bytes;
    String const text = yon::Base64::encode("any bytes");
    std::cout << text << '\n';
    return yon::wstringToUtf8(wide) == utf8 && yon::Base64::decode(text, bytes) && bytes == "any bytes" &&
           !yon::Base64::decode("not base64", bytes);
}

bool names() {
    yon::Filename file("C:\\logs\\node.log");
    file.file("node.old");
    yon::Funcname function("app::Server::run");
    yon::MultiString list("a,b,,d", ",");
    list.add("e");
    std::cout << file.full() << ", " << function.ns() << " and " << function.func() << ", " << list.full() << '\n';
    return file.dir() == "C:\\logs" && function.func() == "run" && list.list().size() == 5;
}

bool numbersAndTime() {
    yon::Ushort const port = String(" 7400 of 65535");  // read up to what is no number
    yon::Ulong const both(0x5678, 0x1234);
    std::cout << port << ", " << port.toString().size() << " digits, " << std::hex << both << std::dec << '\n';
    yon::Time const limit = std::chrono::minutes(90);
    std::cout << (limit + yon::Time::milliSeconds(250)).toDuration() << '\n';
    return port == 7400 && both.high() == 0x1234 && limit.toSeconds() == 5400 &&
           yon::Time::max() + limit == yon::Time::max();  // for ever stays for ever
}

}  // namespace

int main() {
    return views() && ownedText() && growingBuffer() && fields() && reading() && formatting() && encodings() &&
                   names() && numbersAndTime()
               ? 0
               : 1;
}
