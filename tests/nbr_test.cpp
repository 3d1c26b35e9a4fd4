// nbr: the writer's bytes, the parser's trees, what is lenient and what is strict, hostile input.
#include <gtest/gtest.h>

#include <memory>
#include <random>

#include "binary_testing.h"
#include "thread_testing.h"
#include "yon/yon.h"

namespace yon::nbr {
namespace {

using Owner = std::unique_ptr<ValueBase>;

/// A tree in one line: "(5:07 -:'abc' 6:())", data in hexadecimal, text in quotes, "null" for no value.
std::string show(ValueBase const * value) {
    if (value == nullptr) return "null";
    if (auto const * simple = value->simpleValue()) {
        std::string const text(std::string_view(simple->data()));
        return simple->text() ? "'" + text + "'" : hex(text);
    }
    std::string out = "(";
    for (auto const & item : *value->complexValue()) {
        if (out.size() > 1) out += ' ';
        out += item.tag == noTag ? "-:" : std::to_string(item.tag) + ":";
        out += show(item.value);
    }
    return out + ")";
}

std::string defectOf(std::string const & bytes) {
    auto const defect = verify(bytes);
    return defect ? std::to_string(defect->offset) + " " + defect->what : "";
}

TEST(Nbr, TheWriterWritesWhatTheParserReads) {
    wchar const wide[] = {'z', 0xE4, 0};
    std::string const like(41, 'm');
    OutputStream out;
    out.beginComplex();
    (out.tag(5) << 7 << "abc" << istr(like) << String(like)).tag(0) << istr(like);
    (out.tag(2).beginComplex().endComplex().tag(2) << wide).tag(3) << null_type();
    (out.tag(3) << empty_type()).tag(noTag).beginComplex().tag(1).writeRaw(istr("\1\1\7", 3)).endComplex();
    (out.tag(254) << Time(1)).endComplex();
    std::string const m = hex(like);
    EXPECT_EQ(hex(out.str()), "FF 01 28 05 01 01 07 FF F1 03 61 62 63 FF 02 29 00 " + m + " FF F1 29 " + m +
                                  " 00 01 29 " + m + " 02 FF 01 28 FF 01 29 02 F1 03 7A C3 A4 03 00 03 01 00 " +
                                  "FF FF 01 28 01 01 01 07 FF 01 29 FE 01 01 01 FF 01 29");
    InputStream in(out.str());
    std::string const shown =
        "(5:07 -:'abc' -:" + m + " -:'" + like + "' 0:" + m + " 2:() 2:'z\xC3\xA4' -:(1:07) 254:01)";
    EXPECT_EQ(show(in.get()), shown);
    ComplexValue & root = *in.get()->complexValue();
    int number = 0;
    wstring text;
    EXPECT_TRUE(root.read(5, number) && number == 7 && root.read(2, text) && text == wide);
    EXPECT_TRUE(root.get(noTag) == nullptr && root.get(77) == nullptr && !root.read(77, number) && number == 7);

    // Every tag, in an index that follows what is added.
    for (unsigned round = 0; round < 2; ++round) {
        for (unsigned tag = 0; tag <= noTag; ++tag) {
            auto * const value = new SimpleValue(round != 0);
            root.add(static_cast<unsigned char>(tag), value);
            EXPECT_EQ(root.get(static_cast<unsigned char>(tag)), tag == noTag ? nullptr : value);
        }
    }
}

TEST(Nbr, WhatIsRefusedLeavesNothing) {
    int number = 7;
    SimpleValue const wider(istr("\1\2\3\4\5", 5), false);
    EXPECT_TRUE(wider.read(number) && number == 0x04030201 && !SimpleValue().read(number) && number == 0);
    EXPECT_THROW(wider.readStrict(number), DecodeException);
    EXPECT_THROW(SimpleValue().readStrict(number), DecodeException);

    OutputStream out, other;
    for (bool const open : {false, true}) {
        EXPECT_THROW(out.tag(1), UnsupportedFunctionException);
        EXPECT_THROW(out.endComplex(), UnsupportedFunctionException);
        if (open) break;
        EXPECT_THROW(out.beginComplex().tag(256), OutOfRangeException);
        out.tag(9);
    }
    wchar const broken[] = {0xDC00, 0};
    EXPECT_THROW(out << broken, UTFConversionException);
    if constexpr (sizeof(long) > 4) {
        EXPECT_THROW(out << static_cast<long>(1ll << 40), OutOfRangeException);
    }
    other.swap(out);
    out << 1;
    other << 1;
    EXPECT_EQ(hex(out.str()) + " | " + hex(other.str()), "01 01 01 | FF 01 28 09 01 01 01");
}

TEST(Nbr, WhatTheParserAndVerifySayOfBytes) {
    struct {
        char const *bytes, *tree, *trace, *defect;
    } const rows[] = {
        {"", "null", "parseValue empty iptr_", "0 there is no value"},
        {"00", "null", "readSimple zero length of size", ""},
        {"05", "null", "readSimple no data after length of size", "0 the length of the size is above 4"},
        {"05 01", "!", "", "0 the length of the size is above 4"},
        {"F8 01", "!", "", "0 the length of the size is above 4"},
        {"FF 01", "null", "readSimple eof: empty value", "0 no value begins with FF here"},
        {"F0 01", "null", "readSimple empty size", "0 this head is unknown"},
        {"11 01 41", "41", "", "0 this head is unknown"},
        {"02 01", "null", "readSimple empty size", "1 the size is cut off"},
        {"01 00", "null", "", ""},
        {"01 02", "null", "readSimple no data after size", "2 the data is cut off"},
        {"04 FF FF FF FF 41 42", "41 42", "", "5 the data is cut off"},
        {"F1 01 C3", "'\xC3'", "", "2 this text is not UTF-8"},
        {"02 29 00 41", "41", "", "3 the data is cut off"},
        {"01 01 07 01 01 08", "07", "", ""},
        {"FF 01 28", "()", "", "0 this complex value is not closed"},
        {"FF 01 28 05", "()", "parseValue eof: empty value", "3 this tag has no value"},
        {"FF 01 28 05 FF 01 29", "()", "readSimple eof: empty value", "4 no value begins with FF here"},
        {"FF 01 28 05 FF 01 28 06 01 01 07 FF 01 29", "(5:(6:07))", "", "0 this complex value is not closed"},
        {"FF 01 28 02 01 01 07 02 01 01 08 FF 01 01 09 FF 01 29", "(2:07 2:08 -:09)", "", ""},
        {"FF 01 28 FF 01 28 FF 01 29", "(-:FF 01 29)", "", "6 the data is cut off"},
        {"FF 01 28 FF 01 29 FF 01 29", "()", "", "6 no value begins with FF here"},
    };
    for (auto const & row : rows) {
        Reports reports(true);
        std::string const bytes = unhex(row.bytes), at = " src/yon/nbr/parser yon::nbr::parser::";
        try {
            EXPECT_EQ(show(Owner(parser::from(bytes)).get()), row.tree) << row.bytes;
            EXPECT_EQ(reports.text.substr(0, reports.text.find("TRACE", 5)),
                      *row.trace ? "TRACE" + at + row.trace : "");
        } catch (DecodeException const & e) {
            EXPECT_STREQ(row.tree, "!") << row.bytes;
            EXPECT_EQ(reports.text, "thrown" + at + "readSimple " + e.msg());
        }
        EXPECT_EQ(defectOf(bytes), row.defect) << row.bytes;
    }
}

TEST(Nbr, CopiesAreDeepAndStreamsKeepTheirBytes) {
    std::string const bytes = unhex("FF 01 28 05 FF 01 28 06 F1 04 01 02 68 69 FF 01 29 07 01 01 09 FF 01 29");
    InputStream kept{Bytes(bytes)};
    InputStream copy(kept), view(bytes);
    copy.own(Bytes(bytes)).swap(kept);
    copy = InputStream(copy);
    std::string const shown = "(5:(6:'\1\2hi') 7:09)";
    EXPECT_EQ(show(kept.get()), shown);
    EXPECT_EQ(show(copy.get()), shown);
    EXPECT_NE(kept.get(), copy.get());
    auto const & inner = *copy.get()->complexValue()->get(5)->complexValue();
    copy.init(inner.get(6)->simpleValue()->data());
    EXPECT_EQ(show(copy.get()), "68 69") << "bytes of the old tree, which stay as long as they are parsed";
    copy.str(istr("\5\1", 0));
    EXPECT_EQ(copy.get(), nullptr);
    EXPECT_THROW(copy.init(istr("\5\1", 2)), DecodeException);
    ComplexValue assigned;
    assigned.add(1, new SimpleValue());
    assigned = *view.get()->complexValue();
    dumper compact(true);
    assigned.dump(compact);
    EXPECT_EQ(compact.str(), "{5 : {6 : {\"\\x{0102}hi\", true}}, 7 : {\"\\x{09}\", false}}");
}

TEST(Nbr, ReadingThreadsShareATree) {
    OutputStream out;
    out.beginComplex();
    for (unsigned tag = 0; tag < noTag; ++tag) out.tag(tag) << tag;
    out.endComplex();
    InputStream const in(out.str());
    std::atomic<unsigned> wrong{0};
    InThreads(4, [&](int) {
        for (unsigned tag = 0, value = 0; tag < noTag; ++tag) {
            wrong += !in.get()->complexValue()->read(static_cast<unsigned char>(tag), value) || value != tag;
        }
    });
    EXPECT_EQ(wrong, 0u);
}

TEST(NbrHostile, AMillionNestedValuesCostMemoryAndNotStack) {
    constexpr int depth = 1000000;
    OutputStream out;
    for (int i = 0; i < depth; ++i) out.beginComplex();
    InputStream const open(out.str());
    EXPECT_EQ(defectOf(std::string(std::string_view(out.str()))).substr(0, 8), "3999996 ");
    for (int i = 0; i < depth; ++i) out.endComplex();
    EXPECT_FALSE(verify(out.str()).has_value());
    InputStream const in(out.str());
    for (InputStream const * stream : {&open, &in}) {
        InputStream const copy(*stream);
        int levels = 0;
        for (auto const * v = copy.get()->complexValue(); v != nullptr; ++levels) {
            v = v->data().empty() ? nullptr : v->begin()->value->complexValue();
        }
        EXPECT_EQ(levels, depth);
        dumper d;
        d << copy;
        EXPECT_LT(d.str().size(), 10000u);
    }
}

/// A result each time, and `verify` finds every cut that leaves a complex value open.
TEST(NbrHostile, BytesThatAreCutOrChangedAnywhere) {
    std::mt19937 random(11);
    OutputStream out;
    for (char const * text : {"", "a", "text"}) {
        out.beginComplex().tag(1) << text << 70000 << null_type() << istr(std::string(41, '\xFF'))
                                  << std::string(300, 't');
    }
    std::string const bytes(std::string_view(out.endComplex().endComplex().endComplex().str()));
    EXPECT_EQ(defectOf(bytes), "");
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        EXPECT_NO_THROW(Owner(parser::from(istr(bytes, static_cast<ulong>(i)))));
        EXPECT_NE(defectOf(bytes.substr(0, i)), "") << i;
        for (int change = 0; change < 20; ++change) {
            std::string changed = bytes;
            changed[i] = static_cast<char>(random());
            try {
                Owner(parser::from(changed));
            } catch (DecodeException const &) {
                EXPECT_NE(defectOf(changed), "") << i;
            }
        }
    }
}

}  // namespace
}  // namespace yon::nbr
