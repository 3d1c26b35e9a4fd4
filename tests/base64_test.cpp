#include "yon/string/base64.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace yon {
namespace {

std::string randomText(std::mt19937 & random, std::size_t maxSize, std::string const & letters = "") {
    std::string s(random() % (maxSize + 1), '\0');
    for (char & c : s) c = letters.empty() ? static_cast<char>(random()) : letters[random() % letters.size()];
    return s;
}

TEST(Base64Test, EncodesTheVectorsOfTheStandard) {
    std::pair<char const *, char const *> const rows[] = {{"", ""},
                                                          {"f", "Zg=="},
                                                          {"fo", "Zm8="},
                                                          {"foo", "Zm9v"},
                                                          {"foob", "Zm9vYg=="},
                                                          {"fooba", "Zm9vYmE="},
                                                          {"foobar", "Zm9vYmFy"},
                                                          {"\xFB\xFF\xBF", "+/+/"}};
    for (auto const & [bytes, text] : rows) {
        EXPECT_EQ(Base64::encode(bytes), text);
        Bytes out;
        EXPECT_TRUE(Base64::decode(text, out) && out == bytes);
    }
}

TEST(Base64Test, RoundTripsBytesAlsoWithBlanksBetween) {
    std::mt19937 random(1);
    for (int i = 0; i < 3000; ++i) {
        std::string const bytes = randomText(random, i < 200 ? 8 : 400);
        String text = Base64::encode(bytes);
        String const encoded = text;
        ASSERT_EQ(text.size(), Base64::encodedSize(bytes.size()));
        ASSERT_LE(bytes.size(), Base64::maxDecodedSize(text.size()));
        for (auto blanks = random() % 4; blanks > 0; --blanks) {
            text.insert(random() % (text.size() + 1), 1 + random() % 3, " \t\n\v\f\r"[random() % 6]);
        }
        String both = "head";
        Base64::appendEncoded(both, bytes);
        ASSERT_EQ(both, "head" + encoded);
        Bytes out("before");
        ASSERT_TRUE(Base64::appendDecoded(out, text) && out == "before" + bytes);
        ASSERT_TRUE(Base64::decode(text, out) && out == bytes);
    }
}

TEST(Base64Test, AcceptsOneTextForTheSameBytesOnly) {
    std::mt19937 random(2);
    auto const check = [](std::string text) {
        Bytes out("kept");
        Bytes appended("kept");
        bool const valid = Base64::decode(text, out);
        ASSERT_EQ(Base64::appendDecoded(appended, text), valid) << text;
        ASSERT_EQ(appended, "kept" + (valid ? std::string(istr(out)) : "")) << text;
        std::erase_if(text, [](char c) { return c != '\0' && std::strchr(" \t\n\v\f\r", c) != nullptr; });
        ASSERT_EQ(valid ? Base64::encode(out) : "kept", valid ? text : std::string(istr(out))) << text;
    };
    for (int c = 0; c < 256; ++c) {
        for (std::string const text : {"AAAA", "AAA=", "AA==", "AAAAAAAA", "AAAAAA=="}) {
            for (std::size_t at = 0; at < text.size(); ++at) {
                check(std::string(text).replace(at, 1, 1, static_cast<char>(c)));
            }
        }
    }
    for (int i = 0; i < 100000; ++i) ASSERT_NO_FATAL_FAILURE(check(randomText(random, 12, "AQgw+/8= \n==-")));
}

}  // namespace
}  // namespace yon
