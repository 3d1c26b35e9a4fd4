#include "yon/timer/timerCallbackBlock.h"

#include "yon/base/diagnostics.h"
#include "yon/base/system.h"
#include "yon/mt/uncaught.h"

namespace yon {

namespace {

constexpr char const * sourceFile = "src/yon/timer/timerCallbackBlock";
constexpr char const * function = "yon::TimerCallbackBlock::exec";

}  // namespace

ITimerObject::~ITimerObject() = default;

dumper & ITimerObject::dump(dumper & d) const { return d; }

bool TimerCallbackBlock::exec() const noexcept {
    bool const fired = type == Type::fired;
    try {
        if (!fired && type != Type::released) {
            diagnostics::record(diagnostics::Level::warning, "<WARNING>", {sourceFile, 47, function},
                                "unknown timer callback event type");
        } else if (object == nullptr) {
            // Taken back, or there never was one.
        } else if (!fired) {
            object->onRelease(id.serial(), id.position(), userTimerId, param);
        } else if (!System::closing()) {
            object->onTimeout(id.serial(), id.position(), userTimerId, param);
        }
    } catch (...) {
        detail::recordUncaught({sourceFile, __LINE__, function}, "timer callback: uncaught exception: ");
    }
    return fired;
}

}  // namespace yon
