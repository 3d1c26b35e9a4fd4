#pragma once

#include "yon/base/time.h"

namespace yon {

class dumper;
class SimpleThread;

/// What the writers of log headers need to know of a thread. A value; `thread_` is valid as long as the object that
/// it points to, which every copy of a running thread's own data is.
struct YON_API ThreadInfo {
    /// Sets the time and its text to now.
    void updateDateTime();
    dumper & dump(dumper & d) const;

    SimpleThread * thread_ = nullptr;  ///< null for a thread that the library has not started
    String sThreadId_;                 ///< "{process.thread}", "<process.thread>" when `thread_` is null
    Time currDateTime_;                ///< when this was last brought up to date
    String sCurrDateTime_;             ///< its date-time text
};

}  // namespace yon
