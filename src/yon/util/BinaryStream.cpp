#include "yon/util/binary_stream.h"

#include "yon/base/throw.h"

namespace yon {

void detail::raiseTooWide() { YON_THROW(OutOfRangeException, "the value does not fit its 4 bytes"); }

void BinaryStream::encrypt(ostr room) noexcept {
    if (room.buffer() == nullptr || room.max_size() == npos) return;
    std::transform(room.buffer(), room.buffer() + room.max_size(), room.buffer(),
                   [](char c) { return static_cast<char>(~c); });
}

}  // namespace yon
