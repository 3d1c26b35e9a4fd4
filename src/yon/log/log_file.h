// `LogFile`: one file of a logger, and the cache of lines that wait for it.
#pragma once

#include <atomic>
#include <limits>
#include <list>

#include "yon/base/string.h"
#include "yon/log/line_batch.h"
#include "yon/log/logger.h"
#include "yon/log/patient_guard.h"
#include "yon/platform/append_file.h"

namespace yon {

/// What is wrong with files, to be told when no lock is held. Texts that find no memory are not told.
class LogTrouble {
public:
    void failedWrite(String const & name, int error) noexcept;
    void failedMove(String const & backup, int error) noexcept;
    void tell() const noexcept;

private:
    std::string forErrors_;
    std::string forConsole_;
};

/// Keeps lines until there are enough of them, and appends them to a file that it moves away when it has grown too
/// large. Any thread may call anything at any time; nothing but `rename` and `pending` raises anything.
///
/// Lines are appended under the cache lock. A thread that writes holds the file lock and takes the whole cache at
/// once, so that others go on logging meanwhile; those who wait for the file then find their lines written.
///
/// Trouble with the file is told once, on the console or on standard error, until it is over.
class LogFile {
public:
    /// When the cache is written out.
    struct Limits {
        ulong lines;
        ulong bytes;
    };

    /// Both stay the caller's: the switch that says whether lines are to be written (if not, they are forgotten when
    /// their time comes), and the lock of the name.
    LogFile(std::atomic<bool> const & wanted, detail::SystemLock & nameLock) noexcept
        : wanted_(wanted), nameLock_(nameLock) {}

    void append(istr line, Limits const & limits) noexcept;
    /// Returns when everything that was appended before is in the file, or lost. Does nothing without a name.
    void flush() noexcept;
    /// The same for those who hold a lock.
    void flush(LogTrouble & trouble) noexcept;

    /// Gives the file another name. What is cached goes to the one before.
    void rename(istr name);
    String name() const;

    /// Adds what became of the lines.
    void count(logger::Counters & sum) const noexcept;
    /// A copy of the cached lines, and the size that counts towards the limit.
    std::list<String> pending() const;
    ulong runningSize() const noexcept;

    // For a process that ends, crashes or forks.

    /// Ends what a thread was doing that is gone with its locks held, as far as the file does not show that it was
    /// done. REQUIRES: there are no other threads any more.
    void takeOver() noexcept;
    /// Closes the file until it is needed again.
    void close() noexcept;
    /// Whether only a cache that can be locked is written. One that cannot, because its thread has crashed while it
    /// appended a line, is whole but for that line.
    enum class Raw { locked, asItStands };
    /// Writes the cached lines without memory, and without waiting for a lock for long. Returns false if the cache
    /// could not be locked. Callable from a signal handler.
    bool writeRaw(Raw how) noexcept;
    /// Take and release the locks of file and cache.
    void lock() noexcept;
    void unlock() noexcept;
    /// Forgets the cached lines. REQUIRES: the locks are held.
    void forget() noexcept;

private:
    enum class Level { low, full, flooded };

    Level add(istr line, Limits const & limits) noexcept;
    bool isSettled(ulonglong target) const noexcept { return settled_.load(std::memory_order_acquire) >= target; }
    void settle(ulonglong target, LogTrouble & trouble) noexcept;
    bool takeBatch(ulonglong & upTo) noexcept;
    void writeBatch(LogTrouble & trouble) noexcept;
    std::size_t writeLines(LogTrouble & trouble) noexcept;
    bool openFile(LogTrouble & trouble) noexcept;
    bool moveAway(ulong nextLine, LogTrouble & trouble) noexcept;
    std::size_t keepWhole(std::size_t first) noexcept;

    std::atomic<bool> const & wanted_;
    detail::SystemLock & nameLock_;

    mutable detail::SystemLock cacheLock_;
    LineBatch batches_[2];
    LineBatch * front_ = &batches_[0];  ///< the cache
    std::size_t running_ = 0;           ///< bytes that count towards the limit
    std::atomic<ulonglong> appended_{0};
    std::atomic<ulonglong> settled_{0};     ///< of those, how many were written, lost or forgotten
    std::atomic<bool> writerComes_{false};  ///< somebody waits for the file to write a full cache
    std::atomic<bool> named_{false};

    // Under the file lock.
    detail::SystemLock fileLock_;
    static constexpr longlong nowhere = std::numeric_limits<longlong>::max();
    LineBatch & back() noexcept { return batches_[front_ == &batches_[0]]; }  ///< what is being written
    longlong origin_ = nowhere;  ///< where in the file its first byte stands, or would if it were in it
    platform::AppendFile file_;
    bool failing_ = false;  ///< told, and not over yet
    bool moveFailing_ = false;
    String name_;  ///< written under both locks, read under one of them

    std::atomic<ulonglong> written_{0};  ///< changed under the file lock
    std::atomic<ulonglong> dropped_{0};
    std::atomic<ulonglong> failedOpens_{0};
    std::atomic<ulonglong> rotations_{0};
};

/// Where a file goes that has grown too large.
String backupName(String const & name);
/// Whether a file of this size takes `n` more bytes.
bool takes(ulonglong size, ulonglong n, ulonglong maxSize) noexcept;

}  // namespace yon
