// What the service reads from its configuration file.
#pragma once

#include <vector>

#include "yon/yon.h"

namespace heartbeat {

struct Address {
    yon::String host = "127.0.0.1";
    yon::ushort port = 0;
};

struct PeerSettings {
    yon::String id;
    Address address;
};

/// The nodes "node", "timers" and "peers" of the file that the loggers read, too.
struct Settings {
    yon::String id = "node";
    Address listen;
    yon::ulong interval = 500;  ///< milliseconds between two heartbeats to a peer
    yon::ulong timeout = 2000;  ///< milliseconds of silence after which a peer is down
    yon::ulong report = 5000;   ///< milliseconds between two state files, 0 for none
    yon::String stateFile;      ///< where the state goes, none when empty
    std::vector<PeerSettings> peers;

    /// Raises `std::invalid_argument` with "file:line:column: message" for a broken file, `InvalidDataException` for
    /// one that names no port to listen on.
    static Settings load(yon::ConfigFile & file);
};

}  // namespace heartbeat
