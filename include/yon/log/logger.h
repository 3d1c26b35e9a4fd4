// `logger`: a named log channel with switches, two cached and rotating files, console output and callbacks.
#pragma once

#include <atomic>
#include <iosfwd>
#include <memory>
#include <string>

#include "yon/base/config.h"
#include "yon/base/istr.h"
#include "yon/base/string.h"

namespace yon {

class ConfigFile;
class dumper;
namespace pml {
class stream;
}

/// Sees every line that a logger is given. Called on the logging thread, under no lock; may log. What it raises is
/// swallowed. It must live until it is taken off the logger and calls under way have returned.
class YON_API LoggerCallback {
public:
    virtual ~LoggerCallback();
    virtual void onLog(istr line) = 0;
};

/// A log channel. Loggers come from `logger_factory::instance(id)`; one made by itself writes like any other once it
/// has a file name. Every function may be called from any thread at any time; none raises anything for a file that
/// cannot be written: lines that are lost are counted.
///
/// Lines are kept in a cache for each file and written out when the cache holds `maxNumofMsg` lines or `maxCacheSize`
/// bytes, by `flush()`, every second while the timer service runs, and at exit. A line that would take a file past
/// 10 MiB moves the file to its name with ".bak" first. Without a file name a cache keeps up to 8 MiB, then the
/// oldest lines go.
class YON_API logger {
public:
    /// What became of the lines of both files.
    struct Counters {
        ulonglong written = 0;      ///< lines written to a file
        ulonglong dropped = 0;      ///< lines lost: no file name for too long, or a file that could not be written
        ulonglong failedOpens = 0;  ///< batches whose file could not be opened
        ulonglong rotations = 0;    ///< files moved to ".bak"
    };

    logger();
    /// Copies the settings, not the lines, callbacks, identity and timer.
    logger(logger const & other);
    logger & operator=(logger const & other);
    /// Writes out what is cached and is allowed a file.
    ~logger();

    /// Once: reads the configuration, takes the identity and registers the flush timer. A configuration that cannot
    /// be read is reported on standard error and changes nothing.
    logger & init(std::string const & id) noexcept;
    /// Reads the configuration file again, or another one. A broken one is reported on standard error, with the
    /// place, and leaves the settings in force.
    void reload() noexcept;
    void reload(istr const & configFile) noexcept;
    /// Binds the settings to their keys: writes them to an output stream, takes from an input stream those it has.
    void codec(pml::stream & s);

    /// Sets the file name.
    void open(char const * filename);
    /// Writes out what is cached and ends the flush timer, until `init` or `open`.
    void close();
    /// Writes both caches to their files. Returns when all lines logged before the call are out.
    void flush();
    /// What the flush timer calls.
    void onTimer(void * param);

    std::string id() const;
    /// The same without a copy; valid as long as the logger.
    istr idText() const noexcept;

    // Whether a category of records is wanted. One relaxed load each.
    bool debugOn() const noexcept { return on(debugOn_); }
    bool traceOn() const noexcept { return on(traceOn_); }
    bool dataLogOn() const noexcept { return on(dataLogOn_); }
    bool debugLogOn() const noexcept { return on(debugLogOn_); }
    bool traceLogOn() const noexcept { return on(traceLogOn_); }
    bool diagLogOn() const noexcept { return on(diagLogOn_); }
    bool cmdLogOn() const noexcept { return on(cmdLogOn_); }
    bool commLogOn() const noexcept { return on(commLogOn_); }
    bool hbLogOn() const noexcept { return on(hbLogOn_); }
    bool appLogOn() const noexcept { return on(appLogOn_); }
    bool msgLogOn() const noexcept { return on(msgLogOn_); }
    bool useLogfile() const noexcept { return on(useLogfile_); }
    bool useDebugLogfile() const noexcept { return on(useDebugLogfile_); }
    bool consoleOn() const noexcept { return on(consoleOn_); }
    bool mlcOn() const noexcept { return on(mlcOn_); }

    logger & debugOn(bool b) noexcept { return set(debugOn_, b); }
    logger & traceOn(bool b) noexcept { return set(traceOn_, b); }
    logger & appLogOn(bool b) noexcept { return set(appLogOn_, b); }
    logger & msgLogOn(bool b) noexcept { return set(msgLogOn_, b); }
    logger & useLogfile(bool b) noexcept { return set(useLogfile_, b); }
    logger & useDebugLogfile(bool b) noexcept { return set(useDebugLogfile_, b); }
    logger & consoleOn(bool b) noexcept { return set(consoleOn_, b); }
    /// Switches the leak checker of the process on or off, too.
    logger & mlcOn(bool b) noexcept;
    /// Lines and bytes after which a cache is written out.
    logger & setMaxNumofMsg(ulong n) noexcept;
    logger & setMaxCacheSize(ulong bytes) noexcept;

    // Switches by application and by message. Names without an entry are neither on nor off while their category is
    // on; `msgOff` gives the stored bit itself.
    bool logOn(String const & app) const;
    bool logOff(String const & app) const;
    void logOn(String const & app, bool on);
    bool msgOn(String const & msg) const;
    bool msgOff(String const & msg) const;
    void msgOn(String const & msg, bool on);

    /// Sets the main file and derives the debug file: "x.log" gives "x.debug.log", any other name gets ".debug".
    /// What is cached goes to the old file first. File names are in the system's code page or UTF-8.
    void filename(istr const & name);
    String filename() const;
    void debugFilename(istr const & name);
    String debugFilename() const;
    /// Sets the file name, unless it is null, and writes the start lines: which file, which version.
    void useLogfile(char const * filename);

    // Lines are written as they are; they bring their own line ends.
    /// To the main cache.
    void write(istr const & line);
    void write(char const * text, ulong length);
    /// To the debug cache.
    void writeDebug(istr const & line);
    void writeDebug(char const * text, ulong length);
    /// To the debug file, if there is to be one, else to the main file; printed only if there is no log file.
    void writeOrPrint(istr const & line);
    /// To the main file, and printed.
    void writeAndPrint(istr const & line);

    /// Who sees the lines of the main and of the debug file; null takes it off. Not owned.
    void setCallback(LoggerCallback * callback);
    void setDebugCallback(LoggerCallback * callback);

    Counters counters() const;

    dumper & dump(dumper & d) const;

    /// Moves an open file of more than `maxSize - addLen` bytes to its name with ".bak", replacing an older one, and
    /// opens the file anew. A failed move is told on the console.
    static void renameLargeFile(std::ofstream & file, String const & name, ulong maxSize, ulong addLen);
    static void renameLargeFile(String const & name, ulong maxSize, ulong addLen);

private:
    static bool on(std::atomic<bool> const & b) noexcept { return b.load(std::memory_order_relaxed); }
    logger & set(std::atomic<bool> & which, bool b) noexcept {
        which.store(b, std::memory_order_relaxed);
        return *this;
    }

    friend class logger_factory;

    bool ready() const noexcept;
    void awaitInit() const noexcept;
    void take(ConfigFile & file);
    void enable(bool b, pml::stream & settings);

    std::atomic<bool> debugOn_{false};
    std::atomic<bool> traceOn_{false};
    std::atomic<bool> dataLogOn_{true};
    std::atomic<bool> debugLogOn_{true};
    std::atomic<bool> traceLogOn_{false};
    std::atomic<bool> diagLogOn_{false};
    std::atomic<bool> cmdLogOn_{false};
    std::atomic<bool> commLogOn_{false};
    std::atomic<bool> hbLogOn_{false};
    std::atomic<bool> appLogOn_{true};
    std::atomic<bool> msgLogOn_{false};
    std::atomic<bool> useLogfile_{true};
    std::atomic<bool> useDebugLogfile_{true};
    std::atomic<bool> consoleOn_{false};
    std::atomic<bool> mlcOn_{false};

    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace yon
