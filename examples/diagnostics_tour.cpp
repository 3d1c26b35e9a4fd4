// A tour of the reports on what goes wrong: growth of memory, leaks at exit, crashes.
#include <cstdlib>
#include <iostream>
#include <vector>

#include "yon/base/located_new.h"
#include "yon/log/crash_report.h"
#include "yon/log/logger_factory.h"
#include "yon/log/macros.h"

namespace app {

struct Session {
    char state[200];
};

std::vector<Session *> sessions;

void serve() {
    YON_TRACE(yon::logger_factory::yon());
    sessions.push_back(YON_NEW(Session)());
}

bool watchGrowth() {
    yon::MemLeakChecker::enable(true);
    serve();
    std::vector<yon::MLC_Entry> const before = yon::MemLeakChecker::snapshot();
    for (int i = 0; i < 10; ++i) serve();
    bool found = false;
    for (yon::MLC_Entry const & place : yon::MemLeakChecker::since(before)) {
        found = found || (place.count == 10 && place.bytes == 2000);
        std::cout << place.func << ": " << place.count << " more, " << place.bytes << " bytes\n";
    }
    yon::MemLeakChecker::enable(false);
    for (Session * session : sessions) YON_DELETE(session);
    return found;
}

}  // namespace app

// With an argument it crashes.
int main(int argc, char **) {
    yon::CrashReport::install("tour.crash.pml");
    yon::CrashReport::onCrash([](void *) noexcept { /* put the hardware into a safe state */ }, nullptr);
    YON_TRACE(yon::logger_factory::yon());
    if (argc > 1) std::abort();
    return app::watchGrowth() ? 0 : 1;
}
