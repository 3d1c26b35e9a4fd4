// A test program whose cases end in every way; framework_test.cpp runs it.
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>

#include "yon/mt/simple_thread.h"
#include "yon/timer/timer_T.h"
#include "yon/util/test.h"

namespace {

struct Idle : yon::SimpleThread {
    Idle() : SimpleThread(nullptr, "idle") {}
    bool onBirth() override { return born = true; }
    bool onWait() override { return wait(yon::Time::milliSeconds(20)); }
    std::atomic<bool> born{false};
};

YON_TEST_CASE("good", passes) {
    YON_CHECK_LE(1, 2);
    YON_REQUIRE(YON_CHECK_THROWS(std::out_of_range, std::string().at(1)));
}
YON_TEST_CASE("good/deep", passes_too) {
    yon::Handle<Idle> const idle = YON_NEW(Idle)();
    idle->start();
    idle->stop();
}

YON_TEST_CASE("bad", compares) {
    yon::String const text = "a<b";
    YON_CHECK_EQ(text, "other");
    std::thread([] { YON_FAIL("from another thread"); }).join();
    YON_REQUIRE(text.empty());
    YON_FAIL("not reached");
}
YON_TEST_CASE("bad", raises) { throw std::runtime_error("let go"); }
YON_TEST_CASE("bad", leaks) { YON_NEW(int)(7); }
YON_TEST_CASE("bad", leaves_a_thread) {
    Idle * const idle = new Idle;
    idle->start();
    while (!idle->born) std::this_thread::yield();
}

YON_TEST_CASE("fatal", crashes) { std::abort(); }
YON_TEST_CASE("fatal", hangs) { std::this_thread::sleep_for(std::chrono::hours(1)); }

}  // namespace

int main(int argc, char ** argv) { return yon::test::runMain(argc, argv); }
