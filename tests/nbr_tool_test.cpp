// The command-line tool nbr.
#include <gtest/gtest.h>

#include "binary_testing.h"
#include "file_testing.h"
#include "nbr_commands.h"
#include "tool_testing.h"
#include "yon/nbr/verify.h"

namespace {

using yon::hex;
using yon::unhex;

/// Runs the tool within this program.
Result nbr(Words const & arguments, std::string const & input = "") {
    return runTool(&nbrtool::run, arguments, input);
}

TEST(NbrTool, DumpShowsOffsetsTagsSizesAndWhatTheBytesMayMean) {
    std::string const all =
        unhex("FF 01 28 05 01 01 01 05 01 02 FF FF FF F1 03 61 0A 63 FF 02 29 00") + std::string(41, 'm') +
        unhex("07 FF 01 28 03 00 04 01 00 FF 01 29 08 01 04 00 00 20 40 09 01 03 00 00 01 FF 01 29 F1 00");
    Result const plain = nbr({"dump", "-"}, all);
    EXPECT_EQ(plain.out,
              "         0  (\n"
              "         4    5: 1 byte, number 1 or true\n"
              "         8    5: 2 bytes, number -1 or 65535\n"
              "        13    -: 3 bytes, text \"a\\nc\"\n"
              "        19    -: 41 bytes, bytes \"mmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmm\"\n"
              "        64    7: (\n"
              "        68      3: null\n"
              "        70      4: empty\n"
              "        72    )\n"
              "        76    8: 4 bytes, number 1075838976 or float 2.5\n"
              "        83    9: 3 bytes, number 65536\n"
              "        88  )\n"
              "        91  text \"\"\n");
    std::string const lines = nbr({"dump", "--hex", "-"}, all).out;
    EXPECT_NE(lines.find("\n        78        00 00 20 40\n        83    9: "), lines.npos) << lines;
    EXPECT_NE(lines.find("\n        54        6D 6D 6D 6D 6D 6D 6D 6D 6D\n"), lines.npos) << lines;

    Result const cut = nbr({"dump", "-"}, all.substr(0, 10));
    EXPECT_EQ(cut.out, plain.out.substr(0, plain.out.find("         8")));
    EXPECT_TRUE(cut.err == "<stdin>:10: the data is cut off\n" && cut.status == 1);
    for (auto const & [bytes, fault] :
         {std::pair("", "0: there is no value"), std::pair("EF BB BF 01", "0: the length of the size is above 4")}) {
        for (char const * command : {"dump", "check", "to-pml"}) {
            Result const result = nbr({command, "-"}, unhex(bytes));
            EXPECT_EQ(result.err, std::string("<stdin>:") + fault + '\n');
        }
    }
}

TEST(NbrTool, ConvertsBothWays) {
    std::pair<std::string, std::string> const rows[] = {
        {"01 01 07", "nbr(:int(7))"},
        {"00 01 00 F1 00", "nbr(:null():empty():text())"},
        {"FF 01 28 FF 01 29", "nbr(:complex())"},
        {"FF 01 28 05 F1 01 78 05 F1 01 79 FF F1 03 28 27 29 FE 01 01 00 FF 01 29",
         "nbr((5(x)5.2(y)('(\\')')254:int(0)))"},
        {"FF 01 28 00 FF 01 28 01 01 02 80 00 FF 01 29 FF 01 29", "nbr((0(1:int(128))))"},
        {"01 02 FF FF 01 04 00 00 00 80 01 08 FE FF FF FF FF FF FF FF",
         "nbr(:short(-1):int(-2147483648):longlong(-2))"},
        {"01 05 00 00 00 80 00 01 01 FF 01 02 05 00", "nbr(:longlong(2147483648):base64('/w==') :base64(BQA=))"},
        {"F1 05 C3 A4 E2 82 AC", "nbr((\xC3\xA4\xE2\x82\xAC))"},
    };
    for (auto const & [bytes, pml] : rows) {
        Result const made = nbr({"from-pml", "-"}, pml);
        EXPECT_EQ(hex(made.out), bytes) << made.err;
        EXPECT_EQ(nbr({"check", "-"}, made.out).err, "");
        Result const back = nbr({"to-pml", "-"}, made.out);
        EXPECT_EQ(hex(nbr({"from-pml", "-"}, back.out).out), bytes) << back.out;
    }
    EXPECT_EQ(hex(nbr({"from-pml", "-"},
                      "x(:bool(1):byte(200):ushort(65535):uint(4294967295):double(-2.5):float(1):time(1))")
                      .out),
              "01 01 01 01 01 C8 01 02 FF FF 01 04 FF FF FF FF 01 08 00 00 00 00 00 00 04 C0 01 04 00 00 80 3F "
              "01 01 01");
    EXPECT_EQ(nbr({"from-pml", "-"}, "alone(x)").out, unhex("F1 01 78"));
    EXPECT_EQ(nbr({"from-pml", "-"}, "nbr()").out, "");

    std::pair<char const *, char const *> const faults[] = {
        {"n((x(1)))", " /[0]/x: \"x\" is no tag: these are 0 to 254"},
        {"n((255(1)))", " /[0]/255: \"255\" is no tag: these are 0 to 254"},
        {"n(5(1))", " /5: only elements of complex values have tags"},
        {"n(:short(40000))", " /[0]: \"40000\" is no short"},
        {"n(:int(1x))", " /[0]: \"1x\" is no int"},
        {"n(:byte(-1))", " /[0]: \"-1\" is no byte"},
        {"n((1:base64(A)))", " /[0]/1: the text is not Base64"},
        {"n(:word(1))", " /[0]: the type \"word\" is unknown"},
        {"n((\xFF))", " /[0]: the text is not UTF-8"},
        {"a(b:c)", "1:5: not found value begin tag, token"},
    };
    for (auto const & [pml, fault] : faults) {
        Result const result = nbr({"from-pml", "-"}, pml);
        EXPECT_EQ(result.err, std::string("<stdin>:") + fault + '\n');
        EXPECT_TRUE(result.status == 1 && result.out.empty());
    }
}

TEST(NbrTool, AMillionNestedValuesCostTimeAndMemoryAsTheyAreLarge) {
    yon::nbr::OutputStream out;
    constexpr int depth = 1000000;
    for (int i = 0; i < depth; ++i) out.beginComplex();
    for (int i = 0; i < depth; ++i) out.endComplex();
    std::string const bytes(std::string_view(out.str()));
    EXPECT_EQ(nbr({"check", "-"}, bytes).err, "");
    Result const dump = nbr({"dump", "-"}, bytes);
    EXPECT_TRUE(dump.status == 0 && dump.out.size() < 250u * depth);
    Result const pml = nbr({"to-pml", "-"}, bytes);
    EXPECT_EQ(pml.out.size(), 2u * depth + std::string("nbr:complex\n").size() + 2);
    EXPECT_TRUE(nbr({"from-pml", "-"}, pml.out).out == bytes);
}

TEST(NbrTool, TheProgram) {
    WorkingDirectory const directory("nbr-tool");
    std::string const program = programPath(YON_NBR_PROGRAM);
    writeFile("text", "n(('a\r\n\x1A')(:int(10)))");
    std::pair<char const *, int> const rows[] = {{"from-pml text > bytes", 0},
                                                 {"to-pml - < bytes > again", 0},
                                                 {"from-pml again > bytes2", 0},
                                                 {"check bytes none bytes 2> err", 1},
                                                 {"dump 2> err", 2},
                                                 {"--version > out", 0},
                                                 {"to-pml --help > out", 0},
                                                 {"to-pml a b 2> err", 2}};
    for (auto const & [arguments, wanted] : rows) {
        EXPECT_EQ(statusOf(program + ' ' + arguments), wanted) << arguments;
    }
    for (char const * file : {"bytes", "bytes2"}) {
        EXPECT_EQ(hex(contentOf(file)), "F1 04 61 0D 0A 1A FF 01 28 FF 01 01 0A FF 01 29");
    }
}

}  // namespace
