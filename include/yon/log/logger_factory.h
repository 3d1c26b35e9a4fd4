// `logger_factory`: the loggers of the process by identity.
#pragma once

#include <functional>
#include <string>

#include "yon/log/logger.h"

namespace yon {

/// Hands out loggers. All functions may be called from any thread. The first call for an identity makes the logger
/// and initialises it from the configuration file. Loggers live until `destroy()`; without it until the process is
/// gone.
class YON_API logger_factory {
public:
    /// The identity of the default logger, to which the library's own records go.
    static constexpr char const * yonId = "YON";

    static logger & instance(std::string const & id);
    /// The default logger. Cheap.
    static logger & yon();
    static void create();
    /// Writes everything out and deletes all loggers. The caller sees to it that nobody uses one.
    static void destroy();

    /// Writes the caches of all loggers to their files.
    static void flush() noexcept;
    /// Lets every logger read the configuration file again.
    static void reload() noexcept;
    /// Calls `visit` for every logger, in the order of their identities, under no lock.
    static void forEach(std::function<void(logger &)> const & visit);

    static dumper & dump(dumper & d);
};

}  // namespace yon
