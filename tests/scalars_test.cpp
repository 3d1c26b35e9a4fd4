#include "yon/base/scalars.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>

#include "yon/base/bits.h"

// Non-const objects convert by reference, const ones by value. The compiler may remark on its choice, but must never
// find it ambiguous.
#pragma GCC diagnostic ignored "-Wconversion"

namespace yon {
namespace {

template <class... T>
std::string dumped(T const &... values) {
    std::ostringstream os;
    (values.dump(os), ...);
    return os.str();
}

template <class T>
struct Scalars : testing::Test {};
using All = testing::Types<Bit, Char, Byte, Short, Ushort, Long, Ulong, Longlong, Ulonglong, Float, Double>;
TYPED_TEST_SUITE(Scalars, All);

TYPED_TEST(Scalars, StandInForTheirValue) {
    using T = TypeParam;
    using V = std::remove_cvref_t<decltype(T().value())>;
    static_assert(sizeof(T) == sizeof(V) && std::is_trivially_copyable_v<T> &&
                  std::is_nothrow_default_constructible_v<T>);
    static_assert(!std::is_constructible_v<T, int *> && !std::is_assignable_v<T &, char const *>);
    static_assert(std::is_convertible_v<T &, V &> && std::is_convertible_v<T const &, V> &&
                  !std::is_convertible_v<T, V &>);
    T const zero;
    T a = V(1);
    EXPECT_TRUE(zero == V() && !zero && a && a > zero && a != zero && zero < 1 && a == T(1) && 1.0 == a);
    EXPECT_EQ(T(1) + a * 2L - zero, 3);
    V & reference = a;
    reference = V(0);
    EXPECT_EQ(a.value(), V(0));
    a.value() = V(1);
    if constexpr (!std::same_as<V, bool>) {
        a += 4;
        ++a;
        EXPECT_EQ(a, 6);
    }
    EXPECT_EQ(a = V(1), T(V(1)));
    a = String("0");
    EXPECT_EQ(a, V(0));
    std::ostringstream ours, peer;
    ours << a << T(V(65)) << zero;
    peer << a.value() << V(65) << V(0);
    EXPECT_EQ(ours.str(), peer.str());
}

template <class T, class H>
void checkHalves(H) {
    using V = std::remove_cvref_t<decltype(T().value())>;
    static_assert(std::same_as<decltype(T().low()), H> && std::same_as<decltype(T().high()), H>);
    static_assert(T::MIN_VAL == std::numeric_limits<V>::min() && T::MAX_VAL == std::numeric_limits<V>::max());
    static_assert(T::HALF_BITS == sizeof(V) * 4 && static_cast<V>(T::HIGH_MASK ^ T::LOW_MASK) == static_cast<V>(-1));
    std::mt19937 random;
    for (int i = 0; i < 1000; ++i) {
        H const a = static_cast<H>(random()), b = static_cast<H>(random()), c = static_cast<H>(random());
        H const mask = T::HALF_MASK;
        T value(a, b);
        EXPECT_TRUE(value.low() == (a & mask) && value.high() == (b & mask));
        EXPECT_EQ(value & T::LOW_MASK, static_cast<V>(a & mask));
        EXPECT_TRUE(value.low(c).low() == (c & mask) && value.high() == (b & mask));
        EXPECT_TRUE(value.high(a).high() == (a & mask) && value.low() == (c & mask));
    }
}

TEST(Halves, AreKeptApart) {
    checkHalves<Char, unsigned char>(0);
    checkHalves<Byte, unsigned char>(0);
    checkHalves<Short, unsigned char>(0);
    checkHalves<Ushort, unsigned char>(0);
    checkHalves<Long, unsigned short>(0);
    checkHalves<Ulong, unsigned short>(0);
    checkHalves<Longlong, ulong>(0);
    checkHalves<Ulonglong, ulong>(0);
    static_assert(Char::HIGH_MASK == -16 && Byte::HIGH_MASK == 0xF0 && Short::HIGH_MASK == -256);
    static_assert(Long::HIGH_MASK == -65536 && Ulong::HIGH_MASK == 0xFFFF0000 && Longlong::LOW_MASK == 0xFFFFFFFF);
    EXPECT_EQ(Short(0x34, 0x12).value(), 0x1234);
    EXPECT_EQ(Char(15, 10).value(), static_cast<char>(0xAF));
}

/// The value after reading `text` into an object that held `start`, as text.
template <class T, class V>
std::string parsed(V start, char const * text) {
    T value(start);
    EXPECT_EQ(&value.fromString(text), &value);
    EXPECT_EQ(value.toString(), T(value.toString()).toString());
    return value.toString();
}

TEST(Parsing, PassesOnWhatTheStreamLeaves) {
    struct {
        char const *text, *bit, *ch, *byte, *shrt, *ushrt, *lng, *ulng, *flt;
    } const rows[] = {
        {"", "0", "0", "0", "7", "7", "7", "7", "7"},
        {"  ", "0", "0", "0", "7", "7", "7", "7", "7"},
        {"true", "0", "0", "0", "0", "0", "0", "0", "0"},
        {"2", "1", "2", "2", "2", "2", "2", "2", "2"},
        {" \t65 x", "1", "65", "65", "65", "65", "65", "65", "65"},
        {"-1", "1", "-1", "255", "-1", "65535", "-1", "4294967295", "-1"},
        {"300", "1", "44", "44", "300", "300", "300", "300", "300"},
        {"99999999999", "1", "-1", "255", "32767", "65535", "2147483647", "4294967295", "1e+11"},
        {"0.5", "0", "0", "0", "0", "0", "0", "0", "0.5"},
    };
    for (auto const & row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(parsed<Bit>(true, row.text), row.bit);
        EXPECT_EQ(parsed<Char>('x', row.text), row.ch);
        EXPECT_EQ(parsed<Byte>(static_cast<unsigned char>(7), row.text), row.byte);
        EXPECT_EQ(parsed<Short>(static_cast<short>(7), row.text), row.shrt);
        EXPECT_EQ(parsed<Ushort>(static_cast<ushort>(7), row.text), row.ushrt);
        EXPECT_EQ(parsed<Long>(slong{7}, row.text), row.lng);
        EXPECT_EQ(parsed<Ulong>(ulong{7}, row.text), row.ulng);
        EXPECT_EQ(parsed<Float>(7.0f, row.text), row.flt);
    }
    EXPECT_FALSE(Bit("true"));  // text, not a pointer that is not null
    EXPECT_EQ(Longlong("9223372036854775808"), Longlong::MAX_VAL);
    EXPECT_EQ(Ulonglong("-1"), Ulonglong::MAX_VAL);
}

TEST(Printing, ShowsCharactersWhereItDumps) {
    EXPECT_EQ(dumped(Bit(true), Char(27), Char('A'), Byte(200), Byte(0), Short(-5), Double(3.14159265)),
              "true<ESC>A\\310<NUL>-53.14159");
    EXPECT_EQ(Char(27).toString() + Char('A').toString() + Byte(200).toString() + Bit(true).toString(), "27652001");
    EXPECT_EQ((-Long(Long::MIN_VAL)).value(), Long::MIN_VAL);
    EXPECT_TRUE((-Char(-128)).value() == -128 && (-Double(0.5)).value() == -0.5);
}

TEST(CharClass, LooksIntoASet) {
    EXPECT_TRUE(Char('a').in("xa") && Char(0).in("") && !Char('a').in(istr("xa", 1)) && !Char(0).in(nullptr));
}

TEST(Bits, AreAddressedByByteAndBit) {
    EXPECT_EQ(BitPos(), BitPos(0, 0));
    EXPECT_EQ(BitPos(1, 13), BitPos(1, 5));
    EXPECT_EQ(BitPos(19), BitPos(2, 3));
    EXPECT_EQ(BitsSub(BitPos(2, 3), 10).end(), BitPos(3, 5));
    for (ulong n : {0u, 7u, 8u, 65535u, 8 * 65536u - 1}) EXPECT_EQ(BitPos(5, 5).fromTotal(n).toTotal(), n);
}

}  // namespace
}  // namespace yon
