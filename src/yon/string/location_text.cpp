#include "yon/base/location_text.h"

#include <array>
#include <ostream>

#include "yon/string/filename.h"
#include "yon/string/string_ref.h"

namespace yon {

namespace {

constexpr ulong lineWidth = 119;

std::string plainLocation(Current const & where) {
    std::string text = istr(where.func());
    if (where.file() != nullptr) {
        text += '(' + Filename(where.file()).file() + ':' + std::to_string(where.line()) + ')';
    }
    return text;
}

}  // namespace

void detail::appendLocation(std::string & text, Current const & where, istr prefix) {
    std::string const location = plainLocation(where);
    text += std::string_view(prefix);
    ulong const room = lineWidth - std::min(prefix.size(), lineWidth);
    if (prefix.empty() || location.size() <= room) {
        text += location;
        return;
    }
    text.append(location, 0, room);
    text += '\n';
    std::array<char, lineWidth - 1> line;
    StringRef(line.data(), line.size()).fill(' ', line.size()).right(istr(location).removeLeft(room));
    text.append(line.data(), line.size());
}

std::ostream & operator<<(std::ostream & os, Current const & where) {
    std::string text;
    detail::appendLocation(text, where, where.prefix());
    return os.write(text.data(), static_cast<std::streamsize>(text.size()));
}

}  // namespace yon
