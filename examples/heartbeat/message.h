// What peers send to each other: one nbr value in one datagram.
#pragma once

#include "yon/yon.h"

namespace heartbeat {

struct Message {
    enum Kind : unsigned char { ping = 1, pong = 2, goodbye = 3 };

    Kind kind = ping;
    yon::String sender;
    yon::ulong number = 0;  ///< of the ping that a pong answers
    yon::Time sent;         ///< when the ping was sent, by the clock of its sender

    /// Writes the message; the bytes stay valid until the stream is used again.
    yon::istr encode(yon::nbr::OutputStream & out) const;
    /// Raises `nbr::DecodeException` for bytes that are no message.
    static Message decode(yon::istr bytes);
};

}  // namespace heartbeat
