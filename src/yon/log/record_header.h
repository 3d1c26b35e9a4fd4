// What the records of the log begin with.
#pragma once

#include "yon/string/string_buffer.h"

namespace yon {

class logger;

/// Appends the calling thread's date-time text, as of now, and its identity text.
void appendHeaderPrefix(StringBuffer & out);

/// Whether a header shows empty brackets for an empty tag.
enum class EmptyTag { hidden, shown };

/// Appends the prefix, "[", the logger's identity, "]", "[", the tag, "]", and the name of a library thread in
/// braces.
void appendHeader(StringBuffer & out, logger const & log, istr tag, EmptyTag emptyTag = EmptyTag::hidden);

}  // namespace yon
