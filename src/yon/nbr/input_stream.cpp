#include "yon/nbr/input_stream.h"

#include "yon/log/dumper.h"

namespace yon::nbr {

InputStream & InputStream::init(istr bytes) {
    root_.reset();
    // The new bytes may be a part of the old ones.
    auto const old = std::move(bytes_);
    bytes_.reset();
    if (old && bytes.data() >= old->c_str() && bytes.data() < old->c_str() + old->size()) bytes_ = old;
    root_.reset(parser::from(bytes));
    return *this;
}

InputStream & InputStream::own(Bytes bytes) {
    auto kept = std::make_shared<Bytes const>(std::move(bytes));
    root_.reset();
    bytes_ = std::move(kept);
    root_.reset(parser::from(istr(*bytes_)));
    return *this;
}

dumper & InputStream::dump(dumper & d) const {
    d.push("yon::nbr::InputStream", "@");
    if (root_) {
        d.field("root_", *root_);
    } else {
        d.field("root_", static_cast<void const *>(nullptr));
    }
    d.field("owned_", bytes_ != nullptr);
    d.pop();
    return d;
}

}  // namespace yon::nbr
