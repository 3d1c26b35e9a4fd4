#include "message.h"

namespace heartbeat {

namespace {

enum Tag : unsigned { kindTag = 1, senderTag, numberTag, sentTag };

template <class T>
void read(yon::nbr::ComplexValue const & value, Tag tag, T & target) {
    if (!value.read(static_cast<unsigned char>(tag), target)) {
        YON_THROW(yon::nbr::DecodeException, "no field " + std::to_string(tag));
    }
}

}  // namespace

yon::istr Message::encode(yon::nbr::OutputStream & out) const {
    out.reset();
    out.beginComplex();
    out.tag(kindTag) << static_cast<unsigned char>(kind);
    out.tag(senderTag) << sender;
    out.tag(numberTag) << number;
    out.tag(sentTag) << sent;
    out.endComplex();
    return out.str();
}

Message Message::decode(yon::istr bytes) {
    yon::nbr::InputStream const in(bytes);
    yon::nbr::ValueBase const * const root = in.get();
    if (root == nullptr || root->simple()) YON_THROW(yon::nbr::DecodeException, "not a heartbeat");
    Message m;
    unsigned char kind = 0;
    read(*root->complexValue(), kindTag, kind);
    read(*root->complexValue(), senderTag, m.sender);
    read(*root->complexValue(), numberTag, m.number);
    read(*root->complexValue(), sentTag, m.sent);
    if (kind < ping || kind > goodbye) YON_THROW(yon::nbr::DecodeException, "unknown kind " + std::to_string(kind));
    m.kind = static_cast<Kind>(kind);
    return m;
}

}  // namespace heartbeat
