// Datagrams on a socket, and the threads that send and receive.
#pragma once

#include <ace/INET_Addr.h>
#include <ace/SOCK_Dgram.h>

#include <atomic>

#include "peers.h"

namespace heartbeat {

/// A UDP socket. Sending is allowed from any thread, receiving on one.
class Socket {
public:
    /// Raises `InvalidDataException` when the address cannot be had.
    explicit Socket(Address const & listen);
    ~Socket();

    /// Whether it was sent; the network may lose it all the same.
    bool send(yon::istr bytes, Address const & to);
    /// The next datagram; empty when none comes within the time. `buffer` holds it.
    yon::istr receive(yon::ostr buffer, yon::Time const & wait);

private:
    ACE_SOCK_Dgram socket_;
};

/// Sends a ping to every peer, once each interval.
class Sender : public yon::SimpleThread {
public:
    Sender(yon::ThreadOwner * owner, Socket & socket, Peers & peers, yon::logger & log, yon::String const & id);
    void interval(yon::ulong milliseconds) { interval_.store(milliseconds); }
    /// Tells all peers that this node ends.
    void goodbye();

private:
    bool onWait() override;
    void onWork() override;
    void send(Peer & peer, Message & message);

    Socket & socket_;
    Peers & peers_;
    yon::logger & log_;
    yon::String const id_;
    std::atomic<yon::ulong> interval_{500};
    yon::nbr::OutputStream out_;
};

/// Takes what comes in: answers pings, and tells peers of signs of life.
class Receiver : public yon::SimpleThread {
public:
    Receiver(yon::ThreadOwner * owner, Socket & socket, Peers & peers, yon::logger & log, yon::String const & id);
    void timeout(yon::ulong milliseconds) { timeout_.store(milliseconds); }
    /// Datagrams that were no heartbeats, and those from strangers.
    yon::ulong refused() const { return refused_.load(); }

private:
    void onWork() override;
    void take(Message const & message);

    Socket & socket_;
    Peers & peers_;
    yon::logger & log_;
    yon::String const id_;
    std::atomic<yon::ulong> timeout_{2000};
    std::atomic<yon::ulong> refused_{0};
    yon::nbr::OutputStream out_;
};

}  // namespace heartbeat
