#pragma once

#include "yon/base/diagnostics.h"

namespace yon {

/// Traces the function that it stands in.
class TraceScope {
public:
    explicit TraceScope(diagnostics::Location const & where) noexcept : where_(where) { diagnostics::enter(where_); }
    ~TraceScope() { diagnostics::leave(where_); }
    TraceScope(TraceScope const &) = delete;
    TraceScope & operator=(TraceScope const &) = delete;

private:
    diagnostics::Location const where_;
};

}  // namespace yon
