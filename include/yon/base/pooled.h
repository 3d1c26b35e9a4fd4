// Classes whose objects come from a pool of small blocks.
#pragma once

#include <cstddef>

#include "yon/base/config.h"

namespace yon::detail {

YON_API void * allocateBlock(std::size_t size);
YON_API void releaseBlock(void * p, std::size_t size) noexcept;

/// Lets `new T` and `delete` take their memory from the pool; any thread may delete.
template <class T>
struct Pooled {
    static void * operator new(std::size_t size) { return allocateBlock(size); }
    static void * operator new(std::size_t size, char const *, unsigned int, char const *) {
        return allocateBlock(size);
    }
    static void * operator new(std::size_t, void * where) noexcept { return where; }
    static void operator delete(void * p, std::size_t size) noexcept { releaseBlock(p, size); }
    static void operator delete(void * p, char const *, unsigned int, char const *) noexcept {
        releaseBlock(p, sizeof(T));
    }
};

}  // namespace yon::detail
