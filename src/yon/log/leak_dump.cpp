#include "yon/base/leak_checker.h"
#include "yon/log/dumper.h"

namespace yon {

dumper & MLC_Entry::dump(dumper & d) const {
    d.push("yon::MLC_Entry", "@");
    d.field("file", istr(SafeStr(file)))
        .field("line", line)
        .field("func", istr(SafeStr(func)))
        .field("count", count)
        .field("bytes", bytes);
    d.pop();
    return d;
}

dumper & MemLeakChecker::dump(dumper & d) {
    d.push("yon::MemLeakChecker", "@");
    d.field("enabled()", enabled())
        .field("count()", count())
        .field("bytes()", bytes())
        .field("replaced()", replaced());
    forEach([&](MLC_Entry const & e) { d << indent << e << endline; });
    d.pop();
    return d;
}

}  // namespace yon
