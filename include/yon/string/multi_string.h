// `MultiString`: a text and the items that a separator splits it into.
#pragma once

#include <list>

#include "yon/base/string.h"

namespace yon {

class dumper;

/// Setting the text splits it, setting the items or the separator joins them. Empty items are kept ("a,,b" has
/// three), empty text has none. A value; accepts every text and raises nothing.
class YON_API MultiString {
public:
    MultiString(istr full, istr sep) : full_(full), sep_(sep) { split(); }
    MultiString(std::list<String> const & list, istr sep) : list_(list), sep_(sep) { merge(); }

    MultiString & set(istr full);
    MultiString & full(istr full) { return set(full); }
    MultiString & separator(istr sep);
    MultiString & list(std::list<String> const & items);
    /// Adds one item at the end. It stays one item until the next split, whatever it holds.
    MultiString & add(istr item);
    /// Empties the text and the items, keeps the separator.
    MultiString & clear() noexcept;

    istr full() const noexcept { return full_; }
    istr separator() const noexcept { return sep_; }
    std::list<String> const & list() const noexcept { return list_; }

    /// The items from the text. Without a separator each character is an item, and so is the NUL behind the last.
    MultiString & split();
    /// The text from the items.
    MultiString & merge();

    dumper & dump(dumper & d) const;
    std::ostream & dump(std::ostream & os) const;

private:
    String full_;
    std::list<String> list_;
    String sep_;
};

}  // namespace yon
