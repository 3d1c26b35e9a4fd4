// Watching of files that are moved, removed or opened by others.
#pragma once

namespace yon::platform {

/// Tells cheaply whether anything has happened to one of the files that are watched, by a counter. Changes that other
/// machines make, and those of directories on the way, go unseen. Any thread may call anything.
class FileWatch {
public:
    /// Watches the file that has this name. Returns a number for it, which files share that are the same; -1 where it
    /// cannot be watched.
    static int add(char const * name) noexcept;
    /// Everybody who watches it sees that as a change.
    static void remove(int watch) noexcept;
    static unsigned changes() noexcept;
};

}  // namespace yon::platform
