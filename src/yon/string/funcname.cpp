#include "yon/string/funcname.h"

#include "yon/log/dumper.h"

namespace yon {

Funcname & Funcname::full(istr s) {
    full_ = s;
    return split();
}

Funcname & Funcname::ns(istr s) {
    ns_ = s;
    return merge();
}

Funcname & Funcname::func(istr s) {
    func_ = s;
    return merge();
}

Funcname & Funcname::split() {
    istr const name = full_;
    ulong const p = name.rfind(istr(separator()));
    ns_ = p != npos ? name.leftstr(p) : nullptr;
    func_ = p != npos ? name.substr(p + StrLen(separator())) : name;
    return *this;
}

Funcname & Funcname::merge() {
    full_ = ns_ + separator() + func_;
    return *this;
}

dumper & Funcname::dump(dumper & d) const {
    d.push("yon::Funcname", "@");
    d.field("full_", full_).field("ns_", ns_).field("func_", func_);
    d.pop();
    return d;
}

std::ostream & Funcname::dump(std::ostream & os) const {
    dumper d(os, false);
    dump(d);
    return os;
}

}  // namespace yon
