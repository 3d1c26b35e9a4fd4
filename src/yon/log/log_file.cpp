#include "yon/log/log_file.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <memory>
#include <mutex>
#include <utility>

#include "yon/log/console.h"
#include "yon/log/emergency.h"
#include "yon/platform/platform.h"

namespace yon {

namespace {

constexpr ulonglong maxFileSize = 10485760;
/// What a cache holds whose file has no name.
constexpr std::size_t maxNameless = 8u << 20;
/// With that much beyond the limit in the cache, logging threads wait for the one that is to write it.
constexpr std::size_t maxBacklog = 1u << 20;
constexpr std::chrono::milliseconds rawPatience{100};
constexpr ulonglong everything = std::numeric_limits<ulonglong>::max();

std::string reason(int error) { return "(" + std::to_string(error) + ") " + platform::failureText(error); }

}  // namespace

void LogTrouble::failedWrite(String const & name, int error) noexcept try {
    forErrors_ +=
        "log file " + name + " cannot be written: " + reason(error) + "; its lines are lost until this is mended\n";
} catch (std::bad_alloc const &) {
}

void LogTrouble::failedMove(String const & backup, int error) noexcept try {
    forConsole_ += "rename log file to " + backup + " failure: " + reason(error) + "\n";
} catch (std::bad_alloc const &) {
}

void LogTrouble::tell() const noexcept {
    if (!forConsole_.empty()) console::print(forConsole_);
    if (!forErrors_.empty()) std::fputs(forErrors_.c_str(), stderr);
}

String backupName(String const & name) { return name + ".bak"; }

bool takes(ulonglong size, ulonglong n, ulonglong maxSize) noexcept { return size <= maxSize - std::min(n, maxSize); }

void LogFile::append(istr line, Limits const & limits) noexcept {
    Level const level = add(line, limits);
    if (level == Level::low) return;
    // One thread waits for the file to write a full cache, whatever is in it by then; the others go on.
    if (writerComes_.exchange(true, std::memory_order_acq_rel) && level == Level::full) return;
    LogTrouble trouble;
    settle(everything, trouble);
    trouble.tell();
}

LogFile::Level LogFile::add(istr line, Limits const & limits) noexcept try {
    PatientGuard const guard(cacheLock_);
    if (!guard.owns()) throw std::bad_alloc();
    front_->append(line);
    appended_.store(appended_.load(std::memory_order_relaxed) + 1, std::memory_order_release);
    bool full = front_->lines() >= limits.lines;
    if (!full) {
        running_ += line.size();
        full = running_ >= limits.bytes;
    }
    if (!named_.load(std::memory_order_relaxed) && wanted_.load(std::memory_order_relaxed)) {
        if (full) running_ = 0;
        dropped_.fetch_add(front_->dropOldest(maxNameless), std::memory_order_relaxed);
        return Level::low;
    }
    if (logIsEnding.load(std::memory_order_relaxed)) return Level::flooded;
    if (!full) return Level::low;
    return front_->bytes() < limits.bytes + ulonglong{maxBacklog} ? Level::full : Level::flooded;
} catch (std::bad_alloc const &) {
    dropped_.fetch_add(1, std::memory_order_relaxed);
    return Level::low;
}

void LogFile::flush() noexcept {
    ulonglong const target = appended_.load(std::memory_order_acquire);
    if (isSettled(target)) return;
    LogTrouble trouble;
    settle(target, trouble);
    trouble.tell();
}

void LogFile::flush(LogTrouble & trouble) noexcept { settle(appended_.load(std::memory_order_acquire), trouble); }

/// Writes the cache out, unless another thread has written so many lines meanwhile.
void LogFile::settle(ulonglong target, LogTrouble & trouble) noexcept {
    auto const settled = [&] { return isSettled(target); };
    if (settled()) return;
    PatientGuard const guard(fileLock_, settled);
    if (!guard.owns() || settled()) return;
    ulonglong upTo = 0;
    if (!takeBatch(upTo)) return;
    if (wanted_.load(std::memory_order_relaxed)) writeBatch(trouble);
    back().clear();
    origin_ = nowhere;
    back().shrink();
    settled_.store(upTo, std::memory_order_release);
}

bool LogFile::takeBatch(ulonglong & upTo) noexcept {
    writerComes_.store(false, std::memory_order_release);
    PatientGuard const guard(cacheLock_);
    if (!guard.owns()) return false;
    running_ = 0;
    if (!named_.load(std::memory_order_relaxed) && wanted_.load(std::memory_order_relaxed)) return false;
    front_ = &back();
    upTo = appended_.load(std::memory_order_relaxed);
    return true;
}

void LogFile::writeBatch(LogTrouble & trouble) noexcept {
    if (back().empty()) return;
    std::size_t const lines = back().lines();
    std::size_t const written = openFile(trouble) ? writeLines(trouble) : 0;
    written_.store(written_.load(std::memory_order_relaxed) + written, std::memory_order_relaxed);
    if (written != lines) dropped_.fetch_add(lines - written, std::memory_order_relaxed);
    if (written == lines) failing_ = false;
    file_.rest();
}

/// Returns how many lines are in the file. What stands between two moves of the file is written at once.
std::size_t LogFile::writeLines(LogTrouble & trouble) noexcept {
    LineBatch const & batch = back();
    char const * data = batch.data();
    std::size_t const end = batch.lines();
    bool mayMove = true;
    for (std::size_t line = 0; line < end;) {
        if (mayMove && !takes(file_.size(), batch.length(line), maxFileSize)) {
            mayMove = moveAway(batch.length(line), trouble);
            if (!openFile(trouble)) return line;
        }
        std::size_t const first = line;
        std::size_t size = 0;
        do {
            size += batch.length(line++);
        } while (line < end && (!mayMove || takes(file_.size() + size, batch.length(line), maxFileSize)));
        origin_ = static_cast<longlong>(file_.size()) - (data - batch.data());
        if (int const error = file_.write(data, size); error != 0) {
            if (!std::exchange(failing_, true)) trouble.failedWrite(name_, error);
            return keepWhole(first);
        }
        data += size;
    }
    return end;
}

/// Cuts off the part of a line that an interrupted write has left, behind those of the lines from `first` on that it
/// has written; returns the first line that is not in the file.
std::size_t LogFile::keepWhole(std::size_t first) noexcept {
    std::size_t line = first;
    ulonglong start = file_.start();
    while (start + back().length(line) <= file_.size()) start += back().length(line++);
    if (start < file_.size()) file_.truncate(name_.c_str(), start);
    return line;
}

bool LogFile::openFile(LogTrouble & trouble) noexcept {
    int const error = file_.open(name_.c_str());
    if (error == 0) return true;
    failedOpens_.fetch_add(1, std::memory_order_relaxed);
    if (!std::exchange(failing_, true)) trouble.failedWrite(name_, error);
    return false;
}

/// Several loggers may have one file, and another one may just have moved it away: then what has its name now is
/// looked at first. Returns whether it is worth trying again.
bool LogFile::moveAway(ulong nextLine, LogTrouble & trouble) noexcept try {
    static constinit detail::SystemLock moving;
    PatientGuard const guard(moving);
    file_.close();
    if (!guard.owns()) return false;
    if (file_.open(name_.c_str()) != 0 || takes(file_.size(), nextLine, maxFileSize)) return true;
    file_.close();
    String const backup = backupName(name_);
    int const error = platform::moveFile(name_.c_str(), backup.c_str());
    if (error == 0) rotations_.fetch_add(1, std::memory_order_relaxed);
    if (bool const told = std::exchange(moveFailing_, error != 0); !told && error != 0)
        trouble.failedMove(backup, error);
    return error == 0;
} catch (std::bad_alloc const &) {
    return false;
}

void LogFile::rename(istr name) {
    LogTrouble trouble;
    settle(everything, trouble);
    trouble.tell();
    String text = name;
    PatientGuard const guard(fileLock_);
    if (!guard.owns()) return;
    file_.close();
    if (!text.empty()) saveLinesInCrashes();
    std::lock_guard const nameGuard(nameLock_);
    named_.store(!text.empty(), std::memory_order_relaxed);
    name_.swap(text);
}

String LogFile::name() const {
    std::lock_guard const guard(nameLock_);
    return name_;
}

void LogFile::count(logger::Counters & sum) const noexcept {
    sum.written += written_.load(std::memory_order_relaxed);
    sum.dropped += dropped_.load(std::memory_order_relaxed);
    sum.failedOpens += failedOpens_.load(std::memory_order_relaxed);
    sum.rotations += rotations_.load(std::memory_order_relaxed);
}

std::list<String> LogFile::pending() const {
    std::list<String> lines;
    std::lock_guard const guard(cacheLock_);
    char const * data = front_->data();
    for (std::size_t line = 0; line < front_->lines(); data += front_->length(line++))
        lines.emplace_back(istr(data, front_->length(line)));
    return lines;
}

ulong LogFile::runningSize() const noexcept {
    std::lock_guard const guard(cacheLock_);
    return toLength(static_cast<std::size_t>(running_));
}

void LogFile::takeOver() noexcept {
    // A line that was being appended is in the cache as a whole or not at all. The locks are made anew: those who
    // hold them, or wait for them, are gone.
    std::construct_at(&cacheLock_);
    LineBatch & batch = back();
    if (!fileLock_.tryLock() && !batch.empty()) {
        platform::AppendFile file;
        if (file.open(name_.c_str()) == 0) {
            auto const all = static_cast<longlong>(batch.bytes());
            longlong const reached = static_cast<longlong>(file.size()) - origin_;
            longlong const done = std::clamp<longlong>(origin_ == nowhere ? 0 : reached, 0, all);
            file.write(batch.data() + done, static_cast<std::size_t>(all - done));
        }
        batch.clear();
        origin_ = nowhere;
    }
    std::construct_at(&fileLock_);
}

void LogFile::close() noexcept {
    PatientGuard const guard(fileLock_);
    if (guard.owns()) file_.close();
}

bool LogFile::writeRaw(Raw how) noexcept {
    if (!wanted_.load(std::memory_order_relaxed) || !named_.load(std::memory_order_relaxed)) return true;
    bool const locked = tryLockFor(cacheLock_, rawPatience);
    if (!locked && how == Raw::locked) return false;
    // Where a batch is being written, perhaps by the very thread that crashed, the file is opened a second time.
    bool const own = tryLockFor(fileLock_, rawPatience);
    if (!front_->empty() && (own || nameLock_.tryLock())) {
        platform::AppendFile second;
        platform::AppendFile & file = own ? file_ : second;
        if (file.open(name_.c_str()) == 0) file.write(front_->data(), front_->bytes());
        front_->clear();
        if (!own) nameLock_.unlock();
    }
    if (own) fileLock_.unlock();
    if (locked) cacheLock_.unlock();
    return true;
}

void LogFile::lock() noexcept {
    fileLock_.lock();
    cacheLock_.lock();
}

void LogFile::unlock() noexcept {
    cacheLock_.unlock();
    fileLock_.unlock();
}

void LogFile::forget() noexcept {
    front_->clear();
    back().clear();
    settled_.store(appended_.load(std::memory_order_relaxed), std::memory_order_relaxed);
}

}  // namespace yon
