#include <gtest/gtest.h>

#include <map>
#include <random>
#include <sstream>
#include <vector>

#include "thread_testing.h"
#include "yon/yon.h"

namespace yon {
namespace {

using Checker = MemLeakChecker;

/// Works before main and reports after it.
struct FromStartToEnd {
    FromStartToEnd() {
        Checker::enable(true);
        early_ = YON_NEW(int)(7);
        counted_ = Checker::count();
    }
    ~FromStartToEnd() {
        Checker::push(this, "late", 1, "late");
        if (Checker::count() == 0) std::abort();
    }
    int * early_;
    std::size_t counted_;
} fromStartToEnd;

struct LeakChecker : testing::Test {
    LeakChecker() {
        Checker::clear();
        Checker::enable(true);
    }
    ~LeakChecker() override { Checker::enable(false); }
};

void const * block(std::size_t i) { return reinterpret_cast<void const *>(i); }

TEST_F(LeakChecker, ServesStaticObjects) { EXPECT_EQ(fromStartToEnd.counted_, 1u); }

TEST_F(LeakChecker, KnowsWhatIsLive) {
    std::mt19937 random(7);
    std::map<std::size_t, std::size_t> model;
    std::size_t replaced = 0;
    for (int i = 0; i < 200000; ++i) {
        // Neighbouring addresses of several strides, so that blocks meet in the table.
        std::size_t const at = (random() % 3000 + 1) << (random() % 2 * 8 + 3);
        std::size_t const bytes = random() % 100;
        if (random() % 2 != 0) {
            Checker::push(block(at), "f", 1, "g", bytes);
            replaced += !model.insert_or_assign(at, bytes).second;
        } else {
            Checker::pop(block(at));
            model.erase(at);
        }
        if (i % 20000 != 0) continue;
        std::size_t sum = 0;
        for (auto const & [address, size] : model) sum += size;
        ASSERT_EQ(Checker::count(), model.size());
        ASSERT_EQ(Checker::bytes(), sum);
        ASSERT_EQ(Checker::replaced(), replaced);
    }
    Checker::clear();
    EXPECT_EQ(Checker::count() + Checker::bytes() + Checker::replaced(), 0u);
}

TEST_F(LeakChecker, IgnoresWhatItDoesNotKnow) {
    Checker::enable(false);
    Checker::push(block(8), "f", 1, "g", 5);
    Checker::enable(true);
    Checker::pop(block(8));
    Checker::push(nullptr, "f", 1, "g", 5);
    Checker::push(block(16), "f", 1, "g", 5);
    EXPECT_EQ(Checker::count(), 1u);
    Checker::enable(false);
    Checker::pop(block(16));
    EXPECT_EQ(Checker::count(), 0u) << "forgotten although it is off now";
}

TEST_F(LeakChecker, ReportsByPlaceMostBytesFirst) {
    std::string const sameFile = "b.cpp";  // another address than the literal's
    Checker::push(block(8), "a.cpp", 3, "f", 10);
    Checker::push(block(16), "b.cpp", 12, "g", 30);
    Checker::push(block(24), sameFile.c_str(), 12, "g", 40);
    Checker::push(block(32), "b.cpp", 9, "g", 10);
    Checker::push(block(40), nullptr, 0, nullptr);
    std::ostringstream os;
    Checker::report(os << std::hex);
    EXPECT_EQ(os.str(),
              "b.cpp:12 g: 2 blocks, 70 bytes\n"
              "a.cpp:3 f: 1 blocks, 10 bytes\n"
              "b.cpp:9 g: 1 blocks, 10 bytes\n"
              "<null>:0 <null>: 1 blocks, 0 bytes\n"
              "total: 5 blocks, 90 bytes\n");
}

TEST_F(LeakChecker, ShowsGrowth) {
    Checker::push(block(8), "same", 1, "f", 10);
    Checker::push(block(16), "gone", 1, "f", 10);
    Checker::push(block(24), "more", 1, "f", 10);
    std::vector<MLC_Entry> const before = Checker::snapshot();
    EXPECT_TRUE(Checker::since(before).empty());
    Checker::pop(block(16));
    Checker::push(block(32), "more", 1, "f", 5);
    Checker::push(block(40), "more", 1, "f", 5);
    Checker::push(block(48), "new", 2, "f", 70);
    Checker::pop(block(8));
    Checker::push(block(56), "same", 1, "f", 11);  // one byte more
    std::ostringstream grown;
    dumper d(grown, true);
    for (MLC_Entry const & e : Checker::since(before)) d << e;
    EXPECT_EQ(grown.str(), "{\"new\", 2, \"f\", 1, 70}{\"more\", 1, \"f\", 2, 10}{\"same\", 1, \"f\", 0, 1}");
    Checker::dump(d);
    EXPECT_NE(grown.str().find("}{true, 5, 101, 0, {\"new\", 2, \"f\", 1, 70}, {"), std::string::npos) << grown.str();
}

struct Left {
    virtual ~Left() = default;
    long left_ = 0;
};
struct Right {
    virtual ~Right() = default;
    long right_ = 0;
};
struct Both : Left, Right {
    explicit Both(bool fails = false) {
        if (fails) throw 1;
    }
};

TEST_F(LeakChecker, FollowsLocatedAllocations) {
    Right * const p = YON_NEW(Both)();
    Checker::forEach([](MLC_Entry const & e) {
        EXPECT_STREQ(e.file, "tests/leak_checker_test.cpp");
        EXPECT_STREQ(e.func, "yon::LeakChecker_FollowsLocatedAllocations_Test::TestBody");
        EXPECT_EQ(e.bytes, sizeof(Both));
    });
    EXPECT_EQ(Checker::count(), 1u);
    YON_DELETE(p);
    YON_DELETE(static_cast<Both *>(nullptr));
    EXPECT_THROW(YON_NEW(Both)(true), int);
    EXPECT_EQ(Checker::count(), 0u);

    Bytes const b(5);
    std::ostringstream os;
    Checker::report(os);
    EXPECT_TRUE(os.str().starts_with("src/yon/base/base_type_bytes:164 yon::Bytes::alloc: 1 blocks, 5 bytes\n"));
}

TEST_F(LeakChecker, TakesThreads) {
    InThreads(4, [](int t) {
        for (int i = 1; i <= 5000; ++i) {
            void const * const own = block(static_cast<std::size_t>(i * 4 + t) * 8);
            Checker::push(own, "f", 1, "g", 1);
            if (i % 1000 == 0) Checker::forEach([](MLC_Entry const & e) { EXPECT_EQ(e.count, e.bytes); });
            if (i % 2 == 0) Checker::pop(own);
        }
    });
    EXPECT_EQ(Checker::count(), 10000u);
    EXPECT_EQ(Checker::bytes(), 10000u);
}

}  // namespace
}  // namespace yon
