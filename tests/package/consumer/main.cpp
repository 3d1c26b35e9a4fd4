#include <iostream>
#include <sstream>

#include "yon/base/istr.h"

int main() {
    std::ostringstream os;
    yon::istr("text").dump(os);
    std::cout << os.str() << '\n';
    return os.str() == "4, text" ? 0 : 1;
}
