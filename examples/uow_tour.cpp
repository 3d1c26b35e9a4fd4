// A tour of units of work. docs/application.md quotes it.
#include <iostream>

#include "yon/yon.h"

namespace {

// The program: a unit that counts, with an option for how far.
class Counter : public yon::UowMain {
public:
    using UowMain::UowMain;

    void on_init() override {
        yon::CmdOptions options("counter");
        options.option("limit", limit_, "N", "how far to count").flag("loud", loud_, "say every number");
        if (!options.parse(cmdline(), std::cout)) stop();
    }
    void on_loop() override {
        if (++count_ == 2) YON_THROW(yon::InvalidDataException, "two is odd");  // logged, and the loop goes on
        if (loud_) std::cout << count_ << '\n';
        if (count_ >= limit_) stop();
    }
    void on_fini() override { std::cout << "counted to " << count_ << '\n'; }

    int count() const { return count_; }

private:
    int limit_ = 10;
    bool loud_ = false;
    int count_ = 0;
};

}  // namespace

int main(int argc, char ** argv) {
    Counter counter(argc, argv);
    counter.catchSignals();
    try {
        int const status = counter.start();
        return status == 0 && counter.count() == 10 ? 0 : 1;
    } catch (yon::ArgumentException const & e) {
        std::cerr << e.what() << '\n';
        return 2;
    }
}
