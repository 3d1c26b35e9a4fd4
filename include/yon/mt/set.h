#pragma once

#include <functional>
#include <memory>
#include <set>

#include "yon/log/dumper_stl.h"
#include "yon/mt/lock.h"
#include "yon/mt/rec_mutex.h"

namespace yon::mt {

/// A set with a mutex of its own. The operations do not take it: hold `Lock lock(set)` around them, the iteration
/// included. Not copied.
template <class T, class C = std::less<T>, class A = std::allocator<T>>
class set : public std::set<T, C, A>, public RecMutex {
public:
    using std::set<T, C, A>::set;

    /// Holds the mutex while the elements are written.
    dumper & dump(dumper & d) const {
        Lock const lock(*this);
        return detail::dumpElements(d, "yon::mt::set", *this);
    }
};

}  // namespace yon::mt
