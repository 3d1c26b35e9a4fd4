// Names and addresses of the network. Reentrant; nothing in here asks the system.
#pragma once

#include "yon/base/octets.h"
#include "yon/base/string.h"

namespace yon {

/// The name with each run of '.' and ':' as a single '.': "yon::pml::File" gives "yon.pml.File".
YON_API String normalizeName(istr name);

/// The address "1.2.3.4" in network byte order, all ones when it is malformed. Takes what the standard notation
/// takes: decimal, octal ("010") and hexadecimal ("0x10") numbers, fewer than four of them (the last one fills the
/// rest), and anything behind white space. The text ends at its first NUL.
YON_API ulong ip_aton(istr const & s);
/// The address, which is in network byte order, as "1.2.3.4".
YON_API String ip_ntoa(ulong addr);

}  // namespace yon
