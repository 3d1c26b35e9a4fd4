#include "yon/string/multi_string.h"

#include "yon/log/dumper_stl.h"

namespace yon {

MultiString & MultiString::set(istr full) {
    full_ = full;
    return split();
}

MultiString & MultiString::separator(istr sep) {
    sep_ = sep;
    return merge();
}

MultiString & MultiString::list(std::list<String> const & items) {
    list_ = items;
    return merge();
}

MultiString & MultiString::add(istr item) {
    // Copied first: it may be a part of the text that grows.
    bool const first = list_.empty();
    String const & added = list_.emplace_back(item);
    if (!first) full_ += sep_;
    full_ += added;
    return *this;
}

MultiString & MultiString::clear() noexcept {
    full_.clear();
    list_.clear();
    return *this;
}

MultiString & MultiString::split() {
    list_.clear();
    if (full_.empty()) return *this;
    if (sep_.empty()) {
        for (char const * p = full_.c_str(); p <= full_.c_str() + full_.size(); ++p) list_.emplace_back(istr(p, 1));
        return *this;
    }
    istr const sep = sep_;
    istr rest = full_;
    for (ulong p; (p = rest.find(sep)) != npos; rest = rest.removeLeft(p + sep.size())) {
        list_.emplace_back(rest.leftstr(p));
    }
    list_.emplace_back(rest);
    return *this;
}

MultiString & MultiString::merge() {
    full_.clear();
    for (String const & item : list_) {
        if (&item != &list_.front()) full_ += sep_;
        full_ += item;
    }
    return *this;
}

dumper & MultiString::dump(dumper & d) const {
    d.push("yon::MultiString", "@");
    d.field("full_", full_).field("list_", list_).field("sep_", sep_);
    d.pop();
    return d;
}

std::ostream & MultiString::dump(std::ostream & os) const {
    dumper d(os, false);
    dump(d);
    return os;
}

}  // namespace yon
