#include "yon/mt/shared.h"

#include "yon/base/located_new.h"

namespace yon {

// From within the destructor a release may come again; it must not delete twice.

void SimpleShared::delete_i() {
    noDelete_ = true;
    YON_DELETE(this);
}

void Shared::delete_i() {
    noDelete_ = true;
    YON_DELETE(this);
}

}  // namespace yon
