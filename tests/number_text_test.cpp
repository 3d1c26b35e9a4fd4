#include "yon/base/number_text.h"

#include <gtest/gtest.h>

#include <bit>
#include <iomanip>
#include <locale>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace yon::detail {
namespace {

using Random = std::mt19937_64;

template <class T>
T const start = static_cast<T>(77);

/// Equal to the bit, so that the sign of zero counts.
template <class T>
bool same(T a, T b) {
    if constexpr (std::floating_point<T>)
        return std::bit_cast<std::array<char, sizeof(T)>>(a) == std::bit_cast<std::array<char, sizeof(T)>>(b);
    return a == b;
}

template <class T>
std::string format(T value) {
    char room[numberRoom];
    return std::string(room, formatNumber(room, value));
}

/// Compares with a stream of the classic locale, which is reused because making one costs more than the rest.
template <class T>
struct Peer {
    Peer() {
        in.imbue(std::locale::classic());
        out.imbue(std::locale::classic());
    }
    void parse(std::string const & text) {
        in.clear();
        in.str(text);
        T expected = start<T>;
        T value = start<T>;
        bool const expectedOk = static_cast<bool>(in >> expected);
        // A copy of exact size lets a sanitizer see any read behind the end.
        std::vector<char> const exact(text.begin(), text.end());
        bool const ok = parseNumber(istr(exact.data(), toLength(exact.size())), value);
        ASSERT_EQ(ok, expectedOk) << std::quoted(text);
        ASSERT_TRUE(same(value, expected)) << std::quoted(text) << ": " << +value << ", not " << +expected;
    }
    void print(T value) {
        out.str("");
        out << value;
        ASSERT_EQ(format(value), out.str());
    }
    std::istringstream in;
    std::ostringstream out;
};

template <class T>
struct NumberText : testing::Test {};
using Types = testing::Types<bool, char, signed char, unsigned char, short, unsigned short, int, unsigned int, long,
                             unsigned long, long long, unsigned long long, float, double>;
TYPED_TEST_SUITE(NumberText, Types);

TYPED_TEST(NumberText, ParsesTheTextsOfATableAsTheStream) {
    Peer<TypeParam> peer;
    char const * const heads[] = {"",   " ",  "\t\n\v\f\r ", "x",  "+", "-",  "+-",
                                  "-+", "- ", " -",          "--", "0", "00", "-0"};
    std::istringstream words(
        "0 1 2 7 10 65 127 128 129 255 256 32767 32768 32769 65535 65536 2147483647 2147483648 2147483649 "
        "4294967295 4294967296 9223372036854775807 9223372036854775808 9223372036854775809 "
        "18446744073709551615 18446744073709551616 99999999999999999999999999 0x10 0X 010 1,000 true false "
        "abc . .5 1. 1.5 0.1 ..5 1..2 1e 1e+ 1e- 1ex 1E5 1e5 1e+5 1e-5 1e5e3 1e5.5 1e+-1 e5 .e5 1.e1 .5e1 "
        "1e400 1e-400 1e38 1e39 3.4028235e38 3.4028236e38 1e-45 1e-46 1e308 1e309 1.7976931348623157e308 "
        "1.7976931348623159e308 4.9e-324 2.4e-324 0e999999999999999999999 1e999999999999999999999 "
        "12e9223372036854775807 0.1e-4294967295 1e-999999999999999999999 0.00001e310 0.00001e314 100000e-328 "
        "100000e-329 nan inf infinity NAN(1) 0x1p3 1_000 1'000 1e5f \xFF 9007199254740993 16777217");
    std::vector<std::string> bodies(1);
    for (std::string word; words >> word;) bodies.push_back(word);
    for (auto head : heads) {
        for (auto const & body : bodies) {
            for (auto tail : {"", " ", "abc", " 1", "e", "."}) {
                peer.parse(std::string(head) + body + tail);
            }
        }
    }
    peer.parse(std::string("1\0002", 3));
    peer.parse(std::string("\0001", 2));
    for (std::size_t zeros : {10u, 400u, 5000u}) {
        std::string const z(zeros, '0');
        for (auto const & text : {z + "1", "1" + z, "0." + z + "1", "1" + z + "e-" + std::to_string(zeros),
                                  "." + z + "1e" + std::to_string(zeros), "1." + z + "1"}) {
            peer.parse(text);
        }
    }
}

TYPED_TEST(NumberText, ParsesRandomTextsAsTheStream) {
    Peer<TypeParam> peer;
    Random random(1);
    std::string text;
    for (int i = 0; i < 60000; ++i) {
        text.clear();
        // Digits are the most likely, so that most texts hold a number.
        static constexpr char letters[] = " +-0123456789..eE0123456789,x0123456789";
        for (auto n = random() % 24; n > 0; --n) text += letters[random() % (sizeof letters - 1)];
        ASSERT_NO_FATAL_FAILURE(peer.parse(text));
    }
}

TYPED_TEST(NumberText, PrintsAsTheStreamAndReadsItBack) {
    using T = TypeParam;
    using Limits = std::numeric_limits<T>;
    Peer<T> peer;
    for (T v : {Limits::min(), Limits::max(), Limits::lowest(), T(0), T(1), start<T>, Limits::infinity(),
                Limits::quiet_NaN(), Limits::denorm_min(), Limits::epsilon()}) {
        peer.print(v);
        if constexpr (std::floating_point<T>) peer.print(-v);
    }
    Random random(2);
    for (int i = 0; i < 60000; ++i) {
        auto const bits = random() >> random() % 64;
        T value = static_cast<T>(bits);
        if constexpr (std::floating_point<T>) {
            // Any bit pattern, and numbers of ordinary size around the rounding of the sixth digit.
            using Bits = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;
            if (i % 2 == 0)
                value = std::bit_cast<T>(static_cast<Bits>(random()));
            else
                value = static_cast<T>(static_cast<double>(static_cast<int>(random() % 20000000) - 10000000) /
                                       std::pow(10.0, random() % 12));
        }
        ASSERT_NO_FATAL_FAILURE(peer.print(value));
        ASSERT_NO_FATAL_FAILURE(peer.parse(format(value)));
        if constexpr (std::integral<T> && !CharacterType<T>) {
            T back = 0;
            ASSERT_TRUE(parseNumber(format(value), back) && back == value);
        }
    }
}

}  // namespace
}  // namespace yon::detail
