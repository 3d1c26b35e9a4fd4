#include "yon/base/diagnostics.h"

#include <atomic>

#include "yon/base/default_sink.h"

namespace yon::diagnostics {

namespace {

constinit std::atomic<Sink *> sink{&defaultSink};
constinit thread_local bool reporting = false;

/// Calls the sink, unless there is none or this thread is within a call of it.
template <class Call>
void tell(Call call) noexcept {
    Sink * const s = sink.load(std::memory_order_acquire);
    if (s == nullptr || reporting) return;
    reporting = true;
    call(*s);
    reporting = false;
}

}  // namespace

Sink * install(Sink * s) noexcept { return sink.exchange(s, std::memory_order_acq_rel); }

void exceptionThrown(Location const & where, istr message) noexcept {
    tell([&](Sink & s) { s.exceptionThrown(where, message); });
}

void record(Level level, istr tag, Location const & where, istr message) noexcept {
    tell([&](Sink & s) { s.record(level, tag, where, message); });
}

bool categoryOn(istr category) noexcept {
    bool on = false;
    tell([&](Sink & s) { on = s.categoryOn(category); });
    return on;
}

void enter(Location const & where) noexcept {
    tell([&](Sink & s) { s.enter(where); });
}

void leave(Location const & where) noexcept {
    tell([&](Sink & s) { s.leave(where); });
}

void callStack(CallStack & out) noexcept {
    tell([&](Sink & s) { s.callStack(out); });
}

}  // namespace yon::diagnostics
