// Holders of pml text that turn into trees and back.
#pragma once

#include "yon/pml/pml_writer.h"

namespace yon::pml {

/// Something that holds pml text.
class YON_API pmlType {
public:
    virtual ~pmlType();
    /// Prints a tree into the holder.
    virtual bool fromNTV(Unit const & unit, ShowMode mode, ShowPattern pattern) = 0;
    /// Parses the holder into a tree.
    virtual bool toNTV(Unit & unit) const = 0;
};

/// Holds the text itself.
class YON_API pmlString : public pmlType {
public:
    pmlString() = default;
    pmlString(istr text) : data_(text) {}
    String & data() noexcept { return data_; }
    String const & data() const noexcept { return data_; }
    bool fromNTV(Unit const & unit, ShowMode mode = ShowMode::FORMATTED, ShowPattern pattern = {}) override;
    bool toNTV(Unit & unit) const override;

private:
    String data_;
};

/// Names the file that holds the text.
class YON_API pmlFile : public pmlType {
public:
    pmlFile() = default;
    pmlFile(istr filename) : file_(filename) {}
    pmlFile(File const & file) : file_(file) {}
    File & file() noexcept { return file_; }
    File const & file() const noexcept { return file_; }
    bool fromNTV(Unit const & unit, ShowMode mode = ShowMode::FORMATTED, ShowPattern pattern = {}) override;
    bool toNTV(Unit & unit) const override;

private:
    File file_;
};

}  // namespace yon::pml
