// The one seam between the library and the operating system.
//
// Every call of the operating system stands behind a function of this header. posix/ and win32/ implement it, one
// small file for each concern, and hold only the lines that differ. Unless stated otherwise the functions may be
// called from any thread and let nothing out but `std::bad_alloc`.
#pragma once

#include <cstdio>
#include <string>
#include <system_error>

#include "yon/base/conversion_result.h"
#include "yon/base/istr.h"
#include "yon/base/iwstr.h"

namespace yon::platform {

// --- clocks ---

/// Microseconds since 1970-01-01 00:00 UTC by the clock that somebody may set.
longlong wallMicroseconds() noexcept;
/// Microseconds since some moment in the past, by a clock that nobody sets and that never goes back.
longlong monotonicMicroseconds() noexcept;

struct CalendarTime {
    longlong year;  ///< of the common era
    int month;      ///< 1 to 12
    int day;        ///< 1 to 31
    int hour;
    int minute;
    int second;
};

/// The local time, by the rules of the process's time zone, of a moment in seconds since 1970-01-01 00:00 UTC.
/// REQUIRES: a moment within the range of 64-bit microseconds.
CalendarTime localTime(longlong seconds) noexcept;

// --- code page: the character set of the system's narrow text ---

/// Whether narrow text is UTF-8. Cheap.
bool codePageIsUtf8() noexcept;

/// Convert all of `s` and append it to `out`, where after a failure a part of it may stand. A character that the
/// other side cannot express is illegal. REQUIRES: a code page that is not UTF-8.
ConversionResult codePageToWide(istr s, wstring & out);
ConversionResult wideToCodePage(iwstr s, std::string & out);

// --- errors ---

/// The system's last error code of the calling thread, apart from `errno`; 0 where there is only `errno`.
int lastError() noexcept;

/// The C library's text for a value of `errno`, whatever it says of unknown ones.
std::string errnoText(int code);

/// The system's own text for one of its error codes, on one line; empty when it has none. Leaves the last error.
std::string systemText(int code);

/// The text for an error that a failed call of the operating system has given; empty when there is none.
std::string failureText(int code);

// --- files ---

/// Opens a regular file for reading in binary form; the caller closes it. `operation_not_supported` for anything else,
/// such as a directory, a device or a pipe, for which it does not wait.
std::error_code openRegular(std::string const & name, std::FILE *& file);

/// The file that a name means in the end, when it is a symbolic link; otherwise, or when that fails, the name.
std::string linkTarget(std::string const & name);

/// Makes a file that must not exist yet, with the permissions and, where possible, the owner of a regular file that
/// may be written. Opens it for writing in binary form; the caller closes it.
std::error_code createLike(std::string const & name, std::string const & model, std::FILE *& file);

/// Writes everything out, down to the disk.
std::error_code flushToDisk(std::FILE * file);

/// Puts a closed file in the place of another in the same directory, in one step.
std::error_code replaceFile(std::string const & from, std::string const & to);

/// Ends the translation of line ends.
void setBinary(std::FILE * file);

}  // namespace yon::platform
