#include "yon/string/filename.h"

#include "yon/log/dumper.h"

namespace yon {

Filename & Filename::full(istr s) {
    full_ = s;
    return split();
}

Filename & Filename::dir(istr s) {
    dir_ = s;
    return merge();
}

Filename & Filename::file(istr s) {
    file_ = s;
    return merge();
}

Filename & Filename::split() {
    istr const path = full_;
    ulong const p = path.rfind(separator());
    dir_ = p != npos ? path.leftstr(p) : nullptr;
    file_ = p != npos ? path.substr(p + 1) : path;
    return *this;
}

Filename & Filename::merge() {
    full_ = dir_;
    if (!dir_.empty()) full_ += separator();
    full_ += file_;
    return *this;
}

dumper & Filename::dump(dumper & d) const {
    d.push("yon::Filename", "@");
    d.field("full_", full_).field("dir_", dir_).field("file_", file_);
    d.pop();
    return d;
}

std::ostream & Filename::dump(std::ostream & os) const {
    dumper d(os, false);
    dump(d);
    return os;
}

}  // namespace yon
