#include "transport.h"

#include <ace/Time_Value.h>

namespace heartbeat {

namespace {

constexpr int largest = 2048;  // bytes of a datagram

ACE_INET_Addr inet(Address const & address) { return ACE_INET_Addr(address.port, address.host.c_str()); }

}  // namespace

Socket::Socket(Address const & listen) {
    if (socket_.open(inet(listen)) == 0) return;
    YON_THROW(yon::InvalidDataException,
              "cannot listen on " + listen.host + ":" + std::to_string(listen.port) + ": " + yon::getLastErrorMsg());
}

Socket::~Socket() { socket_.close(); }

bool Socket::send(yon::istr bytes, Address const & to) {
    return socket_.send(bytes.data(), bytes.size(), inet(to)) == static_cast<ssize_t>(bytes.size());
}

yon::istr Socket::receive(yon::ostr buffer, yon::Time const & wait) {
    ACE_Time_Value limit(0, static_cast<suseconds_t>(wait.toMicroSeconds()));
    ACE_INET_Addr from;
    ssize_t const size = socket_.recv(buffer.data(), buffer.max_size(), from, 0, &limit);
    return size > 0 ? yon::istr(buffer.data(), static_cast<yon::ulong>(size)) : yon::istr();
}

Sender::Sender(yon::ThreadOwner * owner, Socket & socket, Peers & peers, yon::logger & log, yon::String const & id)
    : SimpleThread(owner, "heartbeat.sender"), socket_(socket), peers_(peers), log_(log), id_(id) {}

bool Sender::onWait() {
    wait(yon::Time::milliSeconds(interval_.load()));
    return true;
}

void Sender::onWork() {
    Message ping{Message::ping, id_, 0, {}};
    for (auto const & peer : peers_.all()) {
        ping.number = peer->nextPing();
        ping.sent = yon::Time::now();
        send(*peer, ping);
    }
}

void Sender::goodbye() {
    Message message{Message::goodbye, id_, 0, yon::Time::now()};
    for (auto const & peer : peers_.all()) send(*peer, message);
}

void Sender::send(Peer & peer, Message & message) {
    bool const sent = socket_.send(message.encode(out_), peer.address());
    if (log_.hbLogOn()) YON_LOG_DEBUG(log_, "HB", "ping " << message.number << " to " << peer.id());
    if (!sent) YON_LOG_DEBUG(log_, "COMM", "nothing sent to " << peer.id() << ": " << yon::getLastErrorMsg());
}

Receiver::Receiver(yon::ThreadOwner * owner, Socket & socket, Peers & peers, yon::logger & log,
                   yon::String const & id)
    : SimpleThread(owner, "heartbeat.receiver"), socket_(socket), peers_(peers), log_(log), id_(id) {}

void Receiver::onWork() {
    char room[largest];
    yon::istr const bytes = socket_.receive(yon::ostr(room, largest), yon::Time::milliSeconds(100));
    if (bytes.empty()) return;
    try {
        take(Message::decode(bytes));
    } catch (yon::nbr::DecodeException const & e) {
        ++refused_;
        if (log_.commLogOn()) YON_LOG_DEBUG(log_, "COMM", "not a heartbeat: " << e.what());
    }
}

void Receiver::take(Message const & message) {
    std::shared_ptr<Peer> const peer = peers_.find(message.sender);
    if (peer == nullptr) {
        ++refused_;
        if (log_.commLogOn()) YON_LOG_DEBUG(log_, "COMM", "a heartbeat of a stranger: " << message.sender);
        return;
    }
    if (message.kind == Message::goodbye) return peer->lost("it said goodbye");
    peer->heard(timeout_.load());
    if (message.kind == Message::pong) return peer->answered(yon::Time::now() - message.sent);
    Message const pong{Message::pong, id_, message.number, message.sent};
    socket_.send(pong.encode(out_), peer->address());
}

}  // namespace heartbeat
