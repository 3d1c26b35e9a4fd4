// How a logger gets its settings.
#include <cstdio>
#include <iterator>
#include <mutex>
#include <thread>
#include <utility>

#include "yon/log/config_file.h"
#include "yon/log/logger_impl.h"
#include "yon/pml/pml_stream.h"

namespace yon {

namespace {

using pml::field;

/// Threads that come while another one initialises a logger wait so long for its settings.
constexpr int initPatience = 1000;  // ms

constinit thread_local logger const * beingInitialised = nullptr;

/// Binds a switch or a number. What is set meanwhile stays, unless the stream has a value.
template <class T>
void bindSetting(pml::stream & s, istr key, std::atomic<T> & setting) {
    T const before = setting.load(std::memory_order_relaxed);
    T volatile value = before;
    s & field(key, value);
    if (s.isInputStream() && value != before) setting.store(value, std::memory_order_relaxed);
}

template <class Switches>
void bindSetting(pml::stream & s, istr key, Switches & switches, detail::SystemLock & lock) {
    Switches copy;
    {
        std::lock_guard const guard(lock);
        copy = switches;
    }
    s & field(key, copy);
    if (!s.isInputStream() || !s.has(key)) return;
    std::lock_guard const guard(lock);
    switches.swap(copy);
}

/// Binds a file name, which `get` reads and `set` changes. An empty one on input changes nothing.
template <class Get, class Set>
void bindName(pml::stream & s, istr key, Get get, Set set) {
    if (s.isInputStream() && s.empty(key)) return;
    String name = get();
    s & field(key, name);
    if (s.isInputStream()) set(name);
}

/// Tells what is wrong with the configuration file, once until it is right again, however many loggers read it.
class ConfigTrouble {
public:
    static void tell(char const * what) noexcept try {
        std::string line = std::string(what) + '\n';
        {
            std::lock_guard const guard(lock_);
            if (told_ == nullptr) told_ = new std::string;
            if (*told_ == line) return;
            *told_ = line;
        }
        std::fputs(line.c_str(), stderr);
    } catch (std::bad_alloc const &) {
    }
    static void forget() noexcept {
        std::lock_guard const guard(lock_);
        if (told_ != nullptr) told_->clear();
    }

private:
    static inline constinit detail::SystemLock lock_;
    static inline constinit std::string * told_ = nullptr;
};

}  // namespace

bool logger::ready() const noexcept { return impl_->state.load(std::memory_order_acquire) == Impl::State::ready; }

logger & logger::init(std::string const & id) noexcept {
    if (ready()) return *this;
    auto expected = Impl::State::fresh;
    if (!impl_->state.compare_exchange_strong(expected, Impl::State::starting)) {
        awaitInit();
        return *this;
    }
    logger const * const outer = std::exchange(beingInitialised, this);
    try {
        impl_->id.store(new std::string(id), std::memory_order_release);
        reload();
        impl_->timer.start();
    } catch (...) {
        // It goes on with what it has.
    }
    beingInitialised = outer;
    impl_->state.store(Impl::State::ready, std::memory_order_release);
    return *this;
}

/// A thread that initialises a logger may log to it meanwhile. Others wait, though not for ever: the one that does it
/// may be gone.
void logger::awaitInit() const noexcept {
    for (int left = initPatience; left > 0 && beingInitialised != this && !ready(); --left)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

void logger::reload() noexcept try {
    ConfigFile file;
    take(file);
} catch (std::exception const & e) {
    ConfigTrouble::tell(e.what());
}

void logger::reload(istr const & configFile) noexcept try {
    ConfigFile file(configFile);
    take(file);
} catch (std::exception const & e) {
    ConfigTrouble::tell(e.what());
}

void logger::take(ConfigFile & file) {
    file.load();
    ConfigTrouble::forget();
    if (file.empty()) return;
    pml::stream settings = file.logSettings(idText());
    bool wanted = true;
    settings & field("enable", wanted);
    enable(wanted, settings);
    codec(settings);
}

/// Has the settings put out every category and both files, or set them to what they were before that. The switches
/// themselves stay for now: threads that log see none that is on for a moment.
void logger::enable(bool b, pml::stream & settings) {
    static constexpr struct {
        char const * key;
        std::atomic<bool> logger::*which;
    } switches[] = {
        {"debugOn", &logger::debugOn_},
        {"traceOn", &logger::traceOn_},
        {"dataLogOn", &logger::dataLogOn_},
        {"debugLogOn", &logger::debugLogOn_},
        {"traceLogOn", &logger::traceLogOn_},
        {"diagLogOn", &logger::diagLogOn_},
        {"cmdLogOn", &logger::cmdLogOn_},
        {"commLogOn", &logger::commLogOn_},
        {"hbLogOn", &logger::hbLogOn_},
        {"appLogOn", &logger::appLogOn_},
        {"msgLogOn", &logger::msgLogOn_},
        {"useLogfile", &logger::useLogfile_},
        {"useDebugLogfile", &logger::useDebugLogfile_},
    };
    std::lock_guard const guard(impl_->names);
    std::vector<bool> saved = impl_->disabled;
    bool const wasOn = saved.empty();
    if (b && wasOn) return;
    saved.resize(std::size(switches));
    for (std::size_t i = 0; i < saved.size(); ++i) {
        bool value = wasOn ? on(this->*switches[i].which) : saved[i];
        settings & field(switches[i].key, value);
        settings[switches[i].key] << (b && value);
        saved[i] = value;
    }
    if (b) saved.clear();
    saved.swap(impl_->disabled);
}

void logger::codec(pml::stream & s) {
    bool const leaks = mlcOn();
    bindSetting(s, "debugOn", debugOn_);
    bindSetting(s, "traceOn", traceOn_);
    bindSetting(s, "dataLogOn", dataLogOn_);
    bindSetting(s, "debugLogOn", debugLogOn_);
    bindSetting(s, "traceLogOn", traceLogOn_);
    bindSetting(s, "diagLogOn", diagLogOn_);
    bindSetting(s, "cmdLogOn", cmdLogOn_);
    bindSetting(s, "commLogOn", commLogOn_);
    bindSetting(s, "hbLogOn", hbLogOn_);
    bindSetting(s, "appLogOn", appLogOn_);
    bindSetting(s, "appLogs", impl_->appLogs, impl_->names);
    bindSetting(s, "msgLogOn", msgLogOn_);
    bindSetting(s, "msgLogs", impl_->msgLogs, impl_->names);
    bindSetting(s, "useLogfile", useLogfile_);
    bindName(
        s, "filename", [this] { return filename(); }, [this](istr name) { filename(name); });
    bindSetting(s, "useDebugLogfile", useDebugLogfile_);
    bindName(
        s, "filenameDebug", [this] { return debugFilename(); }, [this](istr name) { debugFilename(name); });
    bindSetting(s, "maxNumofMsg", impl_->maxLines);
    bindSetting(s, "maxCacheSize", impl_->maxBytes);
    bindSetting(s, "consoleOn", consoleOn_);
    bindSetting(s, "mlcOn", mlcOn_);
    // The checker is everybody's: a logger whose settings say nothing new leaves it alone.
    if (mlcOn() != leaks) mlcOn(mlcOn());
}

}  // namespace yon
