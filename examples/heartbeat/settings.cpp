#include "settings.h"

namespace heartbeat {

namespace {

using yon::pml::field;
using yon::pml::stream;

void codec(stream s, Address & address) { s & field("host", address.host) & field("port", address.port, "ushort"); }

}  // namespace

Settings Settings::load(yon::ConfigFile & file) {
    file.load();
    if (file.empty()) {
        YON_THROW(yon::InvalidDataException,
                  file.filename() + ": there is no such file; name one in ZUV_CLI_CFG_FILE");
    }
    stream const & all = file.mps();
    Settings settings;
    stream node(all["node"]);
    node & field("id", settings.id) & field("stateFile", settings.stateFile);
    codec(node["listen"], settings.listen);
    stream timers(all["timers"]);
    timers & field("heartbeat", settings.interval) & field("timeout", settings.timeout) &
        field("report", settings.report);
    if (auto const * const peers = all["peers"].listValue()) {
        for (yon::pml::Unit const * child : *peers) {
            stream peer(*child);
            PeerSettings & p = settings.peers.emplace_back();
            peer & field("id", p.id);
            codec(peer["address"], p.address);
        }
    }
    if (settings.listen.port == 0) {
        YON_THROW(yon::InvalidDataException, file.filename() + ": node/listen/port is missing");
    }
    return settings;
}

}  // namespace heartbeat
