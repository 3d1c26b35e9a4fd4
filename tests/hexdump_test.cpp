#include "yon/log/hexdump.h"

#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>

#include "yon/base/bytes.h"
#include "yon/log/dumper.h"

namespace yon {
namespace {

/// What a manipulator writes, and a number behind it, which shows the state in which it leaves the stream.
template <class M>
std::string written(M const & manipulator) {
    std::ostringstream os;
    os << std::hex << std::uppercase << std::setfill('*') << manipulator << std::setw(4) << 255;
    std::string const text = os.str();
    EXPECT_EQ(text.substr(text.size() - 4), " 255");
    return text.substr(0, text.size() - 4);
}

std::string line(istr data) { return written(write_hex(data)); }
std::string table(istr data) { return written(dump_hex<show_printable>(data)); }

std::string bytes(int n) {
    std::string s;
    for (int i = 0; i < n; ++i) s += static_cast<char>(i);
    return s;
}

constexpr char const * heading =
    "\n        00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F  0123456789ABCDEF"
    "\n-------------------------------------------------------------------------";

TEST(WriteHex, IsOneLineOfPairs) {
    EXPECT_EQ(line("") + line(nullptr) + written(write_hex(nullptr, 0)), "");
    EXPECT_EQ(line("A\n\xFF"), "41 0A FF");
    std::string const longest = line(bytes(256));
    EXPECT_TRUE(longest.size() == 256u * 3 - 1 && longest.ends_with("FD FE FF"));
    EXPECT_EQ(line(bytes(256) + "x"), longest + "<omit data up to 257>");
    EXPECT_EQ(line(std::string(300, '\0')).substr(765), "00<omit data up to 300>");
}

TEST(DumpHex, IsATableOfSixteenBytesARow) {
    EXPECT_EQ(table(""), heading);
    EXPECT_EQ(table("A\n"), heading + std::string("\n000000: 41 0A ") + std::string(14 * 3 + 1, ' ') + "A.");
    EXPECT_EQ(table(istr("0123456789abcdef\xFF")),
              heading +
                  std::string("\n000000: 30 31 32 33 34 35 36 37 38 39 61 62 63 64 65 66  "
                              "0123456789abcdef\n000010: FF ") +
                  std::string(15 * 3 + 1, ' ') + ".");
    std::string const full = table(bytes(256));
    EXPECT_EQ(std::count(full.begin(), full.end(), '\n'), 18);
    EXPECT_EQ(full.substr(full.size() - 73),
              "0000F0: F0 F1 F2 F3 F4 F5 F6 F7 F8 F9 FA FB FC FD FE FF  ................");
    EXPECT_EQ(table(bytes(256) + std::string(44, 'x')), full + "\n000100: <omit data up to 12C>");
    EXPECT_EQ(written(dump_hex_base("AB")), heading + std::string("\n000000: 41 42 ") + std::string(14 * 3 + 1, ' '));
}

TEST(HexData, FollowsTheLayoutOfTheDumper) {
    unsigned char const data[] = {'A', 0, 0xC3};
    dumper lines, compact(true);
    lines << hexdata(data, 3) << rawstring("\1raw\n");
    compact << hexdata(data, 3) << ' ' << write_hex(data, 1) << rawstring("\1raw\n");
    EXPECT_EQ(lines.str(), table(istr(data, 3)) + "\1raw\n");
    EXPECT_EQ(compact.str(), "41 00 C3' '41\1raw\n");
    EXPECT_EQ(written(hexdata("ABC", 2)) + written(write_hex("AB", npos)), "41 4241 42");
    EXPECT_EQ(written(hexdata(istr("ABC"), 2)) + written(hexdata(istr("AB"), 20)), "41 4241 42");
    std::ostringstream os;
    for (char c : {'a', ' ', '\n', '\xC3', '\0'}) os << show_printable(c);
    EXPECT_EQ(os.str(), "a ...");
}

}  // namespace
}  // namespace yon
