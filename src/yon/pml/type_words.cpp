#include "yon/pml/type_words.h"

#include <array>
#include <atomic>

#include "yon/base/text_hash.h"

namespace yon::pml {

namespace {

constexpr ulong longestWord = 32;
constexpr std::size_t slots = 1024;
/// Looking further than this counts as "full": foreign input must not make the look-up slow.
constexpr std::size_t longestProbe = 16;

constinit std::array<std::atomic<String const *>, slots> table{};

}  // namespace

String const * sharedTypeWord(istr word) {
    if (word.size() > longestWord) return nullptr;
    std::size_t const home = textHash(word, textHashSeed());
    for (std::size_t i = 0; i < longestProbe; ++i) {
        std::atomic<String const *> & slot = table[(home + i) % slots];
        String const * known = slot.load(std::memory_order_acquire);
        if (known == nullptr) {
            auto * const fresh = new String(word);
            if (slot.compare_exchange_strong(known, fresh, std::memory_order_acq_rel)) return fresh;
            delete fresh;
        }
        if (*known == word) return known;
    }
    return nullptr;
}

}  // namespace yon::pml
