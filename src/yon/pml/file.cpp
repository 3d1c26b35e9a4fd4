#include "yon/pml/file.h"

#include <fstream>

namespace yon::pml {

bool File::open(std::ifstream & in) const {
    in.open(filename_, std::ios::binary);
    return in.is_open();
}

bool File::open(std::ofstream & out) const {
    out.open(filename_, std::ios::binary | std::ios::trunc);
    return out.is_open();
}

}  // namespace yon::pml
