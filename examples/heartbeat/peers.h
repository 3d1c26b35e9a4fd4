// The peers of this node, what is known of each, and who watches over them.
#pragma once

#include <memory>
#include <vector>

#include "message.h"
#include "settings.h"

namespace heartbeat {

/// One peer. It is up from its first sign of life until it has been silent for the timeout. Callable from any thread.
class Peer {
public:
    Peer(PeerSettings const & settings, yon::logger & log);
    /// No call of the timer comes any more when this has returned.
    ~Peer();

    yon::String const & id() const noexcept { return settings_.id; }
    Address const & address() const noexcept { return settings_.address; }

    /// The next ping to send.
    yon::ulong nextPing();
    /// Something came from the peer: it is up, and has until the timeout for the next sign of life.
    void heard(yon::ulong timeoutMilliseconds);
    void answered(yon::Time roundTrip);
    /// The peer has said goodbye, or been silent for too long.
    void lost(yon::istr why);

    bool up() const;
    yon::dumper & dump(yon::dumper & d) const;
    /// A line of the summary table.
    yon::String summary(yon::String const & self) const;

private:
    void onSilence(void *);

    PeerSettings const settings_;
    yon::logger & log_;
    yon::RecMutex mutex_;  ///< guards all below
    bool up_ = false;
    yon::ulong sent_ = 0;
    yon::ulong answered_ = 0;
    yon::ulong downs_ = 0;
    yon::Time least_ = yon::Time::max();
    yon::Time most_;
    yon::Time total_;
    yon::Timer_T<Peer> silence_;
};

/// All peers. The list is replaced as a whole when the configuration changes; peers that stay keep what is known.
class Peers {
public:
    using List = std::vector<std::shared_ptr<Peer>>;

    explicit Peers(yon::logger & log) : log_(log) {}
    void configure(std::vector<PeerSettings> const & settings);
    /// Null for an unknown one.
    std::shared_ptr<Peer> find(yon::istr id) const;
    List all() const;

private:
    yon::logger & log_;
    yon::RecMutex mutex_;
    List peers_;
};

}  // namespace heartbeat
