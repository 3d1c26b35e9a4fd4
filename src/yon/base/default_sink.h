// What stands behind the port of diagnostics.h from the start.
#pragma once

#include "yon/base/diagnostics.h"

namespace yon::diagnostics {

/// The logging layer's sink, which defines its members and the one object. It is needed here by name, so that it is
/// there before any code runs, and linked from an archive whatever a program uses.
class DefaultSink final : public Sink {
public:
    void exceptionThrown(Location const & where, istr message) noexcept override;
    void record(Level level, istr tag, Location const & where, istr message) noexcept override;
    bool categoryOn(istr category) noexcept override;
    void enter(Location const & where) noexcept override;
    void leave(Location const & where) noexcept override;
    void callStack(CallStack & out) noexcept override;
};

extern DefaultSink defaultSink;

}  // namespace yon::diagnostics
