#include "yon/base/version.h"

#include <ostream>

#include "yon/base/time.h"
#include "yon/base/version_text.h"

namespace yon {

std::ostream & operator<<(std::ostream & os, show_version) {
    static constexpr char const * attribution[] = {
        (YON_VERSION_TEXT ", built " __DATE__),
        "A toolkit library for applications on Windows and Linux.",
        "Free software under the MIT licence, without warranty of any kind.",
    };
    // Fixed texts, the same on every target.
    static constexpr char const * options[] = {
        "WIN32",
        "NDEBUG",
        "_YON_UNIT_TEST OFF",
        "_YON_DEBUG OFF",
        "_YON_TRACE OFF",
        "_YON_TRACE_LOG OFF",
        "_YON_MEMLEAKCHECK OFF",
        "_YON_ASSERT OFF",
        "_YON_ASSERT_ABORT OFF",
        "_YON_BREAK_ON_EXCEPTION OFF",
        "_YON_THROW_REALLY = 1",
    };
    for (char const * line : attribution) os << line << std::endl;
    os << "\nCurrent time = " << Time::now() << std::endl;
    os << "Compile time = " __DATE__ " " __TIME__ << std::endl;
    os << "Compile options:" << std::endl;
    for (char const * option : options) os << '\t' << option << std::endl;
    return os;
}

}  // namespace yon
