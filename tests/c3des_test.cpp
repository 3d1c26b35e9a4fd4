// Triple DES against published vectors, and what it refuses.
#include "yon/util/c3des.h"

#include <gtest/gtest.h>

#include <sstream>

#include "binary_testing.h"
#include "raise_testing.h"
#include "yon/base/exception.h"

namespace yon {
namespace {

TEST(C3DES, PublishedVectors) {
    // "key vector text cipher": the example of the standard; known answers for variable plaintext, variable key,
    // permutations and substitution tables; chained blocks, and two keys.
    char const * const rows[] = {
        "0123456789ABCDEF23456789ABCDEF01456789ABCDEF0123 - 5468652071756663 A826FD8CE53B855F",
        "010101010101010101010101010101010101010101010101 - 8000000000000000 95F8A5E5DD31D900",
        "800101010101010180010101010101018001010101010101 - 0000000000000000 95A8D72813DAA94D",
        "104691348998013110469134899801311046913489980131 - 0000000000000000 88D55E54F54C97B4",
        "7CA110454A1A6E577CA110454A1A6E577CA110454A1A6E57 - 01A1D6D039776742 690F5B0D9A26939B",
        "0131D9619DC1376E0131D9619DC1376E0131D9619DC1376E - 5CD54CA83DEF57DA 7A389D10354BD271",
        "0123456789ABCDEF0123456789ABCDEF 1234567890ABCDEF "
        "4E6F77206973207468652074696D6520666F7220616C6C20 E5C7CDDE872BF27C43E934008C389C0F683788499A7C05F6",
        "0123456789ABCDEFFEDCBA9876543210 - 0123456789ABCDE7 7F1D0A77826B8AFF",
    };
    for (auto const & row : rows) {
        std::istringstream words(row);
        std::string key, vector, plain, expected;
        words >> key >> vector >> plain >> expected;
        C3DES const cipher(unhex(key), vector == "-" ? C3DES::Mode::ECB : C3DES::Mode::CBC, unhex(vector));
        std::string const text = unhex(plain);
        Bytes const encrypted = cipher.encrypt(text);
        EXPECT_EQ(encrypted.size(), text.size() + C3DES::blockSize);
        EXPECT_EQ(hex(istr(encrypted, toLength(text.size()))), hex(unhex(expected)));
        EXPECT_TRUE(istr(cipher.decrypt(encrypted)) == text);
    }
}

TEST(C3DES, PaddingAndWhatIsRefused) {
    std::string key;
    for (char c = 0; c < 24; ++c) key += static_cast<char>(7 * c);
    C3DES two(key.substr(0, 16)), three(key, C3DES::Mode::CBC, "initial!");
    C3DES moved(std::move(two));
    two = C3DES(key.substr(0, 16) + key.substr(0, 8));
    for (std::size_t size = 0; size < 40; ++size) {
        std::string const text(size, 'x');
        Bytes const a = moved.encrypt(text), b = two.encrypt(text), c = three.encrypt(text);
        EXPECT_TRUE(istr(a) == istr(b) && istr(a) != istr(c) && c.size() == size - size % 8 + 8);
        EXPECT_TRUE(istr(moved.decrypt(a)) == text && istr(three.decrypt(c)) == text) << size;
    }
    Bytes data = three.vector("another!").encrypt("some text");
    EXPECT_FALSE(istr(three.vector("initial!").decrypt(data)) == istr("some text"));
    // The second block ends in seven times 7: another first block changes it.
    for (unsigned bits : {7u ^ 0u, 7u ^ 9u, 7u ^ 8u, 7u ^ 255u}) {
        Bytes broken(data);
        broken[7] ^= static_cast<unsigned char>(bits);
        EXPECT_THROW(three.decrypt(broken), InvalidDataException);
    }
    for (ulong size : {0u, 7u, 9u}) EXPECT_THROW(three.decrypt(istr(data, size)), InvalidDataException);
    for (ulong size : {0u, 8u, 15u, 17u, 23u}) EXPECT_THROW(C3DES(istr(key, size)), InvalidDataException);
    EXPECT_THROW(C3DES(key, C3DES::Mode::CBC), InvalidDataException);
    EXPECT_THROW(three.vector("short"), InvalidDataException);
    EXPECT_EQ(raised([&] { three.decrypt("0123456701234567"); }), "InvalidDataException: broken padding");
}

}  // namespace
}  // namespace yon
