#include "yon/timer/timer_block.h"

#include "yon/log/dumper.h"

namespace yon {

namespace {

dumper & null(dumper & d) { return d.raw("(void*)0"); }

/// `*name`, or that there is none.
template <class T>
void pointee(dumper & d, istr name, T const * p) {
    if (p != nullptr) {
        d.field(name, *p);
    } else {
        d.field(name, null);
    }
}

}  // namespace

std::ostream & TimerId::dump(std::ostream & os) const { return os << '{' << serial_ << ", " << position_ << '}'; }

dumper & TimerId::dump(dumper & d) const {
    d.push("yon::TimerId", "@");
    d.field("serial", serial_).field("position", position_);
    d.pop();
    return d;
}

char const * timerStatusName(TimerStatus status) noexcept {
    switch (status) {
        case TimerStatus::idle:
            return "IDLE";
        case TimerStatus::busy:
            return "BUSY";
        case TimerStatus::paused:
            return "PAUSED";
    }
    return "UNKNOWN";
}

dumper & TimerInfo::dump(dumper & d) const {
    d.push("yon::TimerInfo", "@");
    d.field("id", id).field("userTimerId", userTimerId);
    d.field("remaining", remaining.toDuration()).field("interval", interval.toDuration());
    d.field("times", times).field("status", timerStatusName(status));
    d.pop();
    return d;
}

dumper & TimerBlock::dump(dumper & d) const {
    d.push("yon::TimerBlock", "@");
    d.field("m_statusPos", m_statusPos).field("m_unTimes", m_unTimes);
    d.field("m_nInterval", m_nInterval.toDuration());
    pointee(d, "*m_pCallBackTimerObject", m_pCallBackTimerObject);
    d.field("m_nUserTimerID", m_nUserTimerID).field("m_pParam", m_pParam);
    d.field("m_status", timerStatusName(m_status));
    d.pop();
    return d;
}

dumper & TimeoutBlock::dump(dumper & d) const {
    d.push("yon::TimeoutBlock", "@");
    d.field("m_expiredTime", m_expiredTime).field("m_nTimerID", m_nTimerID);
    pointee(d, "*m_tb", m_tb);
    d.pop();
    return d;
}

}  // namespace yon
