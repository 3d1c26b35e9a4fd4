#pragma once

#include <cstddef>
#include <functional>
#include <iosfwd>

#include "yon/base/config.h"

namespace yon {

class dumper;

/// The operating system's number of a thread; 0 is none. Numbers of ended threads are used again. A plain value.
struct ThreadId {
    constexpr ThreadId() noexcept = default;
    constexpr ThreadId(unsigned int id) noexcept : id_(id) {}
    constexpr operator unsigned int() const noexcept { return id_; }

    /// The calling thread's. Cheap: the system is asked once a thread.
    YON_API static ThreadId current() noexcept;

private:
    unsigned int id_ = 0;
};

/// Write the number.
YON_API std::ostream & operator<<(std::ostream & os, ThreadId const & id);
YON_API dumper & operator<<(dumper & d, ThreadId const & id);

}  // namespace yon

template <>
struct std::hash<yon::ThreadId> {
    std::size_t operator()(yon::ThreadId id) const noexcept { return std::hash<unsigned int>()(id); }
};
