// `Funcname`: a qualified function name and its two parts.
#pragma once

#include "yon/base/string.h"

namespace yon {

class dumper;

/// A qualified name, split at its last "::" into scope and function: setting the name splits it, setting a part joins
/// both. A value; accepts every text and raises nothing.
class YON_API Funcname {
public:
    Funcname() = default;
    Funcname(istr full) { this->full(full); }
    Funcname(istr ns, istr func) : ns_(ns), func_(func) { merge(); }

    Funcname & full(istr s);
    Funcname & ns(istr s);
    Funcname & func(istr s);
    istr full() const noexcept { return full_; }
    istr ns() const noexcept { return ns_; }
    istr func() const noexcept { return func_; }

    /// The parts from the name.
    Funcname & split();
    /// The name from the parts, always with the separator: an empty scope and "bar" give "::bar".
    Funcname & merge();
    static constexpr char const * separator() noexcept { return "::"; }

    dumper & dump(dumper & d) const;
    std::ostream & dump(std::ostream & os) const;

private:
    String full_;
    String ns_;
    String func_;
};

}  // namespace yon
