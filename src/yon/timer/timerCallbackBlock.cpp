#include "yon/timer/timerCallbackBlock.h"

#include <sstream>

#include "yon/base/diagnostics.h"
#include "yon/base/exception.h"
#include "yon/base/system.h"
#include "yon/log/dumper.h"

namespace yon {

namespace {

constexpr char const * sourceFile = "src/yon/timer/timerCallbackBlock";
constexpr char const * function = "yon::TimerCallbackBlock::exec";

/// Records the exception that is being handled.
void recordUncaught(unsigned int line) noexcept try {
    std::ostringstream os;
    os << "timer callback: uncaught exception: ";
    try {
        throw;
    } catch (Exception const & e) {
        os << e;
    } catch (ExceptionBase const & e) {
        os << e;
    } catch (std::exception const & e) {
        os << e;
    } catch (...) {
        os << "of an unknown type";
    }
    diagnostics::record(diagnostics::Level::error, "<ERROR>", {sourceFile, line, function}, istr(os.str()));
} catch (...) {
    // No memory for the text.
}

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
        recordUncaught(__LINE__);
    }
    return fired;
}

}  // namespace yon
