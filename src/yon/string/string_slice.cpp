#include "yon/string/string_slice.h"

#include "yon/base/throw.h"
#include "yon/log/dumper.h"

namespace yon {

void StringSlice::overrun() { YON_THROW(OutOfRangeException, "beyond the end of the text"); }

dumper & StringSlice::dump(dumper & d) const {
    d.push("yon::StringSlice", "@");
    d.field("text_", text_).field("cursor_", cursor_);
    d.pop();
    return d;
}

}  // namespace yon
