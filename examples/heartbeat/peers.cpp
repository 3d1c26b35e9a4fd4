#include "peers.h"

#include <algorithm>

namespace heartbeat {

Peer::Peer(PeerSettings const & settings, yon::logger & log)
    : settings_(settings), log_(log), silence_(this, &Peer::onSilence) {}

Peer::~Peer() = default;

yon::ulong Peer::nextPing() {
    yon::Lock const lock(mutex_);
    return ++sent_;
}

void Peer::heard(yon::ulong timeoutMilliseconds) {
    bool cameUp = false;
    {
        yon::Lock const lock(mutex_);
        cameUp = !std::exchange(up_, true);
    }
    // One shot; a peer that goes on moves it ahead of itself.
    if (!silence_.resetTimer(timeoutMilliseconds, 1)) silence_.setTimer(0, timeoutMilliseconds, 1);
    if (cameUp) YON_LOG_INFO(log_, "peer " << id() << " is up");
}

void Peer::answered(yon::Time roundTrip) {
    yon::Lock const lock(mutex_);
    ++answered_;
    least_ = std::min(least_, roundTrip);
    most_ = std::max(most_, roundTrip);
    total_ += roundTrip;
}

void Peer::lost(yon::istr why) {
    {
        yon::Lock const lock(mutex_);
        if (!std::exchange(up_, false)) return;
        ++downs_;
    }
    YON_LOG_WARNING(log_, "peer " << id() << " is down: " << why);
}

void Peer::onSilence(void *) { lost("it is silent"); }

bool Peer::up() const {
    yon::Lock const lock(mutex_);
    return up_;
}

yon::dumper & Peer::dump(yon::dumper & d) const {
    yon::Lock const lock(mutex_);
    d.push("heartbeat::Peer", "");
    d.field("id", settings_.id).field("up", up_).field("sent", sent_).field("answered", answered_);
    d.field("downs", downs_).field("least", least_.toDuration()).field("most", most_.toDuration());
    d.pop();
    return d;
}

yon::String Peer::summary(yon::String const & self) const {
    yon::Lock const lock(mutex_);
    auto const milliseconds = [](yon::Time t) { return static_cast<double>(t.toMicroSeconds()) / 1000; };
    bool const any = answered_ != 0;
    double const mean = any ? milliseconds(total_) / answered_ : 0;
    return yon::Printf("%-8s %-8s %-5s %8u %8u %8u %9.3f %9.3f %9.3f", self, settings_.id, up_ ? "up" : "down", sent_,
                       answered_, sent_ - answered_, any ? milliseconds(least_) : 0, mean, milliseconds(most_));
}

void Peers::configure(std::vector<PeerSettings> const & settings) {
    List const before = all();
    List now;
    for (PeerSettings const & s : settings) {
        auto const known = std::find_if(before.begin(), before.end(), [&](auto const & p) {
            return p->id() == s.id && p->address().host == s.address.host && p->address().port == s.address.port;
        });
        now.push_back(known != before.end() ? *known : std::make_shared<Peer>(s, log_));
    }
    yon::Lock const lock(mutex_);
    peers_.swap(now);
}

std::shared_ptr<Peer> Peers::find(yon::istr id) const {
    yon::Lock const lock(mutex_);
    auto const found = std::find_if(peers_.begin(), peers_.end(), [&](auto const & p) { return p->id() == id; });
    return found == peers_.end() ? nullptr : *found;
}

Peers::List Peers::all() const {
    yon::Lock const lock(mutex_);
    return peers_;
}

}  // namespace heartbeat
