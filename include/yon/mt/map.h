#pragma once

#include <functional>
#include <map>
#include <memory>

#include "yon/log/dumper_stl.h"
#include "yon/mt/lock.h"
#include "yon/mt/rec_mutex.h"

namespace yon::mt {

/// A map with a mutex of its own. The operations do not take it: hold `Lock lock(map)` around them, the iteration
/// included. Not copied.
template <class K, class V, class C = std::less<K>, class A = std::allocator<std::pair<K const, V>>>
class map : public std::map<K, V, C, A>, public RecMutex {
public:
    using std::map<K, V, C, A>::map;

    /// Holds the mutex while the elements are written.
    dumper & dump(dumper & d) const {
        Lock const lock(*this);
        return detail::dumpEntries(d, "yon::mt::map", *this);
    }
};

}  // namespace yon::mt
