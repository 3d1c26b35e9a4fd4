#include "yon/base/text_hash.h"

#include <random>

namespace yon {

std::uint64_t textHashSeed() noexcept {
    static std::uint64_t const seed = [] {
        std::random_device device;
        return static_cast<std::uint64_t>(device()) << 32 | device();
    }();
    return seed;
}

}  // namespace yon
