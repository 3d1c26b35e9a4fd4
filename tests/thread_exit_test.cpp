// A program that leaves main while its threads are at everything that threads do. It ends at once, with 0.
#include <cstdlib>

#include "yon/yon.h"

namespace {

class Busy : public yon::SimpleThread {
public:
    explicit Busy(int kind) : SimpleThread(nullptr, "busy"), kind_(kind) {}

private:
    bool onWait() override { return kind_ != 0 || wait(yon::Time::seconds(1000)); }
    void onWork() override {
        if (kind_ == 1) static_cast<void>(current().sCurrDateTime_ + currDateTimeString());
        if (kind_ == 2) yon::Handle<Busy>(new Busy(3))->start().join();
        if (kind_ == 3) livingEnd();
    }
    int const kind_;
};

}  // namespace

int main() {
    for (int kind = 0; kind < 3; ++kind) (new Busy(kind))->start();
    std::atexit([] { yon::SimpleThread::current(); });
    yon::sleep(50);
    return 0;
}
