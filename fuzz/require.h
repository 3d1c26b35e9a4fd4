// What fuzz targets say when something does not hold.
#pragma once

#include <cstdio>
#include <cstdlib>

inline void require(bool holds, char const * what) {
    if (holds) return;
    std::fprintf(stderr, "broken: %s\n", what);
    std::abort();
}
