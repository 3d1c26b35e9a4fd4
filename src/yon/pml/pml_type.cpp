#include "yon/pml/pml_type.h"

namespace yon::pml {

pmlType::~pmlType() = default;

bool pmlString::fromNTV(Unit const & unit, ShowMode mode, ShowPattern pattern) {
    return ntvToPml(unit, data_, mode, pattern);
}

bool pmlString::toNTV(Unit & unit) const { return ntvFromPml(unit, istr(data_)); }

bool pmlFile::fromNTV(Unit const & unit, ShowMode mode, ShowPattern pattern) {
    return ntvToPml(unit, file_, mode, pattern);
}

bool pmlFile::toNTV(Unit & unit) const { return ntvFromPml(unit, file_); }

}  // namespace yon::pml
