// `nbr::InputStream`: the tree of a parsed value, and perhaps the bytes behind it.
#pragma once

#include <memory>

#include "yon/nbr/parser.h"

namespace yon::nbr {

/// Owns one value, the root, with all below it. Copies are deep. The bytes belong to the caller and must outlive it,
/// but for those that are given as a temporary `Bytes`, or to `own`: these the stream keeps, and shares with its
/// copies. Raises what `parser` raises, and is then empty. One object belongs to one thread at a time.
class YON_API InputStream {
public:
    InputStream() noexcept = default;
    explicit InputStream(istr bytes) { init(bytes); }
    template <yon::detail::OwnedText S>
    explicit InputStream(S const & bytes YON_LIFETIMEBOUND) : InputStream(istr(bytes)) {}
    /// Keeps the bytes.
    explicit InputStream(Bytes && bytes) { own(std::move(bytes)); }
    /// Takes a tree.
    explicit InputStream(ValueBase * root) noexcept : root_(root) {}
    InputStream(InputStream const & o) : bytes_(o.bytes_), root_(o.root_ ? o.root_->clone() : nullptr) {}
    InputStream(InputStream && o) noexcept = default;
    InputStream & operator=(InputStream o) noexcept {
        swap(o);
        return *this;
    }

    /// Replace the root by the first value of other bytes.
    InputStream & init(istr bytes);
    InputStream & str(istr bytes) { return init(bytes); }
    /// The same, and keeps the bytes.
    InputStream & own(Bytes bytes);

    /// The root; null when nothing was parsed.
    ValueBase * get() const noexcept { return root_.get(); }
    void swap(InputStream & o) noexcept {
        bytes_.swap(o.bytes_);
        root_.swap(o.root_);
    }
    dumper & dump(dumper & d) const;

private:
    std::shared_ptr<Bytes const> bytes_;  ///< what the tree views, if it is not the caller's
    std::unique_ptr<ValueBase> root_;
};

}  // namespace yon::nbr
