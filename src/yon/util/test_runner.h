// Runs one test case and watches over it.
#pragma once

#include "yon/util/test_report.h"

namespace yon::test {

/// Runs the case on the calling thread. Checks of all threads go to it until it ends. When it crashes or takes longer
/// than the limit it is named on standard error, and the process ends: as the crash wants it, or with status 124.
Result runCase(Case const & c, Time timeLimit);

}  // namespace yon::test
