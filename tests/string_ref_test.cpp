#include "yon/string/string_ref.h"

#include <gtest/gtest.h>

#include <sstream>

#include "raise_testing.h"
#include "yon/base/exception.h"
#include "yon/log/dumper.h"

namespace yon {
namespace {

using namespace std::string_literals;

using R = StringRef &;

TEST(StringRef, WritesInsideItsBuffer) {
    struct Row {
        ulong size;
        void (*act)(R);
        std::string expected;  ///< ten places; NUL reads as '0', what is untouched as '.'
        ulong cursor;
    };
    for (Row const & row : std::initializer_list<Row>{
             {9, [](R r) { r.append("abc", 2).append(static_cast<unsigned char>('x')); }, "abx0......", 3},
             {9, [](R r) { r.append(static_cast<char const *>(nullptr), 3); }, "0.........", 0},
             {4, [](R r) { r.append("abcdef"); }, "abcd......", 4},
             {4, [](R r) { (r += "ab") += "cd"; }, "abcd......", 4},
             {9, [](R r) { r << 'a' << String("b") << Byte(99) << istr("de", 1); }, "abcd0.....", 4},
             {9, [](R r) { (r << "xyz") = istr("ab"); }, "ab00......", 2},
             {9, [](R r) { r = Bytes("ab"); }, "ab0.......", 2},
             {9, [](R r) { EXPECT_EQ(istr((r << "ab") + "cd"), "abcd"); }, "abcd0.....", 2},
             {9, [](R r) { r.fill('-', 3).fill('x', 0); }, "---.......", 3},
             {4, [](R r) { (r << "a").fill('-', npos); }, "a---......", 4},
             {9, [](R r) { ++r.append("ab"); }, "ab00......", 3},
             {9, [](R r) { EXPECT_EQ(istr(r.append("abcd").rewind(1)++), "a"); }, "ab0d0.....", 2},
             {4, [](R r) { r.advance(4).advance(0); }, "..........", 4},
             {9, [](R r) { r.append("abc").shift(2).append("x"); }, "abx0......", 1},
             {4, [](R r) { r.rewind(9).append("x").fill('y', 2); }, "..........", 9},
             {10, [](R r) { r.left("xyz"); }, "xyz ......", 0},
             {4, [](R r) { r.left("vwxyz"); }, "vwx ......", 0},
             {10, [](R r) { r.right("xyz"); }, "...... xyz", 0},
             {4, [](R r) { r.right("vwxyz"); }, " xyz......", 0},
             {10, [](R r) { r.right('=', 3); }, "...... ===", 0},
             {4, [](R r) { r.right('=', npos); }, " ===......", 0},
             {10, [](R r) { r.center("ab"); }, "... ab ...", 0},
             {10, [](R r) { r.center("abc"); }, ".. abc ...", 0},
             {5, [](R r) { r.center("abcdefg"); }, " cde .....", 0},
             {10, [](R r) { r.center("").left("").right("").right('x', 0); }, "..........", 0},
             {2, [](R r) { r.right("ab"); }, " b........", 0},
             {1, [](R r) { r.left("ab").right("ab").center("ab").right('x', 1); }, "..........", 0},
             {0, [](R r) { (r << "ab").fill('x', 1).left("a").right("a"); }, "..........", 0},
         }) {
        std::string room(10, '.');
        StringRef r(room.data(), row.size, 0);
        row.act(r);
        for (char & c : room) c = c != '\0' ? c : '0';
        EXPECT_EQ(room, row.expected) << row.size;
        EXPECT_EQ(static_cast<ulong>(r.current() - r.buffer()), row.cursor) << row.expected;
    }
}

TEST(StringRef, RefusesToLeaveTheBuffer) {
    char room[4];
    StringRef r(room, 4, 4);
    std::pair<void (*)(StringRef &), std::string> const rows[] = {
        {[](StringRef & s) { ++s; }, "195 yon::StringRef::operator`++'"},
        {[](StringRef & s) { s++; }, "195 yon::StringRef::operator`++'"},
        {[](StringRef & s) { s.advance(1); }, "217 yon::StringRef::advance"},
        {[](StringRef & s) { s.advance(npos - 1); }, "217 yon::StringRef::advance"},
        {[](StringRef & s) { StringRef(s).rewind(9).advance(0); }, "217 yon::StringRef::advance"},
    };
    for (auto const & [move, place] : rows) {
        auto const leave = [&r, &step = move] { step(r); };
        EXPECT_EQ(raisedAt<OutOfRangeException>(leave), "include/yon/string/string_ref:" + place);
        EXPECT_EQ(raised(leave), "OutOfRangeException: OutOfRangeException");
        EXPECT_EQ(r.size(), 4u) << "a refused move changes nothing";
    }
}

TEST(StringRef, StandsBehindTheTextThatIsThere) {
    char room[8] = "abc";
    ostr o(room, sizeof room);
    StringRef r(o);
    EXPECT_TRUE(istr(r) == "abc" && r.left() == 5 && r.max_size() == 8 && !r.empty() && *r == 0 && r.at(1) == 'b');
    EXPECT_EQ(ostr(r << "d").size(), 4u);
    EXPECT_EQ(istr(StringRef(r).rewind(99)).size(), 8u);
    Bytes b(4);
    b.append("ab");
    StringRef over(b);
    over << "xyz";
    EXPECT_TRUE(istr(over) == "abxy" && b.size() == 2);
    StringRef none;
    EXPECT_TRUE((none << "a").fill('x', 3).empty() && none.null() && none.left() == 0 && istr(none).is_null());
    EXPECT_TRUE(StringRef(nullptr, 5).append("a").empty());
    std::ostringstream os;
    none.dump(os);
    EXPECT_EQ(os.str(), "@yon::StringRef {\n    addr_ = 0\n    size_ = 0\n    cursor_ = 0\n}");
}

}  // namespace
}  // namespace yon
