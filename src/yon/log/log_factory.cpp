#include <memory>
#include <mutex>
#include <vector>

#include "yon/log/log_channel.h"
#include "yon/log/logger_factory.h"
#include "yon/mt/map.h"
#include "yon/platform/fork.h"
#include "yon/util/singleton_T.h"

namespace yon {

/// The loggers by identity.
class LoggerFactoryImpl {
public:
    static LoggerFactoryImpl *& instance() {
        return Singleton_T<LoggerFactoryImpl>::instance("src/yon/log/log_factory", __LINE__,
                                                        "yon::LoggerFactoryImpl::instance");
    }
    /// Deletes all loggers, too.
    static void destroy() {
        mt::map<std::string, std::unique_ptr<logger>> loggers;
        {
            Lock const lock(instance()->loggers_);
            loggers.swap(instance()->loggers_);
        }
        loggers.clear();
        Singleton_T<LoggerFactoryImpl>::destroy();
    }

    /// The logger, which may be new and without settings.
    logger & at(std::string const & id) {
        if (logger * const known = find(id)) return *known;
        // Made under no lock; one too many goes again.
        auto made = std::make_unique<logger>();
        Lock const lock(loggers_);
        return *loggers_.try_emplace(id, std::move(made)).first->second;
    }
    std::vector<logger *> all() {
        std::vector<logger *> found;
        Lock const lock(loggers_);
        for (auto const & [id, entry] : loggers_) found.push_back(entry.get());
        return found;
    }
    dumper & dump(dumper & d) const {
        d.push("yon::logger_factory", "@");
        d.field("loggers_", loggers_);
        d.pop();
        return d;
    }

    void lock() const noexcept { loggers_.lock(); }
    void unlock() const noexcept { loggers_.unlock(); }

    /// For those who must not make it.
    static constinit std::atomic<LoggerFactoryImpl *> existing;

private:
    friend class Singleton_T<LoggerFactoryImpl>;
    logger * find(std::string const & id) const {
        Lock const lock(loggers_);
        auto const found = loggers_.find(id);
        return found != loggers_.end() ? found->second.get() : nullptr;
    }

    LoggerFactoryImpl() noexcept { existing.store(this, std::memory_order_release); }
    ~LoggerFactoryImpl() { existing.store(nullptr, std::memory_order_release); }

    mt::map<std::string, std::unique_ptr<logger>> loggers_;
};

constinit std::atomic<LoggerFactoryImpl *> LoggerFactoryImpl::existing{nullptr};

namespace {

/// Asked for so often that it is kept at hand.
constinit std::atomic<logger *> yonLogger{nullptr};

/// The process forks with the map and all loggers whole.
struct ForkSafety {
    ForkSafety() noexcept { platform::onFork(platform::ForkLayer::log, before, inParent, inChild); }

    static void before() noexcept {
        held = LoggerFactoryImpl::existing.load(std::memory_order_acquire);
        if (held != nullptr) held->lock();
        lockChannels();
    }
    static void inParent() noexcept {
        unlockChannels();
        if (held != nullptr) held->unlock();
    }
    static void inChild() noexcept {
        unlockChannelsOfChild();
        if (held != nullptr) held->unlock();
    }
    static inline constinit LoggerFactoryImpl * held = nullptr;
} const forkSafety;

}  // namespace

logger & logger_factory::instance(std::string const & id) {
    if (id == yonId) return yon();
    return LoggerFactoryImpl::instance()->at(id).init(id);
}

logger & logger_factory::yon() {
    logger * known = yonLogger.load(std::memory_order_acquire);
    if (known == nullptr) {
        known = &LoggerFactoryImpl::instance()->at(yonId).init(yonId);
        if (known->ready()) yonLogger.store(known, std::memory_order_release);
    }
    return *known;
}

void logger_factory::create() { LoggerFactoryImpl::instance(); }

void logger_factory::destroy() {
    yonLogger.store(nullptr, std::memory_order_release);
    LoggerFactoryImpl::destroy();
}

void logger_factory::flush() noexcept try {
    forEach([](logger & l) { l.flush(); });
} catch (...) {
}

void logger_factory::reload() noexcept try {
    forEach([](logger & l) { l.reload(); });
} catch (...) {
}

void logger_factory::forEach(std::function<void(logger &)> const & visit) {
    for (logger * const l : LoggerFactoryImpl::instance()->all()) visit(*l);
}

dumper & logger_factory::dump(dumper & d) { return LoggerFactoryImpl::instance()->dump(d); }

}  // namespace yon
