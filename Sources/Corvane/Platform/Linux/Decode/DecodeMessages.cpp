#include "Platform/Linux/Decode/DecodeMessages.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <sys/socket.h>

namespace corvane {

namespace {

/// A message with one order, and room for one descriptor.
struct Envelope {
    explicit Envelope(DecodeOrder& order)
        : content { &order, sizeof order }
    {
        message.msg_iov = &content;
        message.msg_iovlen = 1;
        message.msg_control = control.data();
        message.msg_controllen = control.size();
    }
    Envelope(const Envelope&) = delete;
    Envelope& operator=(const Envelope&) = delete;

    iovec content;
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control {};
    msghdr message {};
};

bool writeAll(const Descriptor& socket, const char* bytes, size_t count)
{
    while (count > 0) {
        const ssize_t written = ::send(socket.number(), bytes, count, MSG_NOSIGNAL);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        bytes += written;
        count -= size_t(written);
    }
    return true;
}

}

bool fitsOrder(const DecodeHead& head, const DecodeOrder& order)
{
    using Kind = DecodeOrder::Kind;
    if (head.kind == DecodeHead::Kind::Failed)
        return head.payload == 0 && head.failure >= 0 && head.failure <= qint32(DecodeFailure::Unavailable);
    if (head.kind != DecodeHead::Kind::Done || head.durationMs < 0)
        return false;
    switch (order.kind) {
    case Kind::Picture:
        return head.width > 0 && head.height > 0 && head.width <= order.box.mostWidth && head.height <= order.box.height
            && head.payload == quint64(head.width) * quint64(head.height) * 4;
    case Kind::Shape:
        return head.payload == size_t(order.count) * sizeof(float);
    case Kind::Sound:
        return head.payload <= size_t(order.count) * size_t(order.format.channels) * sizeof(float)
            && head.payload % (size_t(order.format.channels) * sizeof(float)) == 0;
    }
    return false;
}

bool sendOrder(const Descriptor& socket, const DecodeOrder& order, const Descriptor& file)
{
    DecodeOrder copy = order;
    Envelope envelope(copy);
    cmsghdr* const rights = CMSG_FIRSTHDR(&envelope.message);
    rights->cmsg_level = SOL_SOCKET;
    rights->cmsg_type = SCM_RIGHTS;
    rights->cmsg_len = CMSG_LEN(sizeof(int));
    const int number = file.number();
    std::memcpy(CMSG_DATA(rights), &number, sizeof number);
    return ::sendmsg(socket.number(), &envelope.message, MSG_NOSIGNAL) == ssize_t(sizeof copy);
}

std::optional<std::pair<DecodeOrder, Descriptor>> receiveOrder(const Descriptor& socket)
{
    DecodeOrder order;
    Envelope envelope(order);
    ssize_t count = 0;
    do {
        count = ::recvmsg(socket.number(), &envelope.message, MSG_WAITALL | MSG_CMSG_CLOEXEC);
    } while (count < 0 && errno == EINTR);
    const cmsghdr* const rights = CMSG_FIRSTHDR(&envelope.message);
    if (count != ssize_t(sizeof order) || !rights || rights->cmsg_type != SCM_RIGHTS)
        return std::nullopt;
    int number = -1;
    std::memcpy(&number, CMSG_DATA(rights), sizeof number);
    return std::pair(order, Descriptor(number));
}

bool sendReply(const Descriptor& socket, const DecodeReply& reply)
{
    return writeAll(socket, reinterpret_cast<const char*>(&reply.head), sizeof reply.head)
        && writeAll(socket, reply.payload.constData(), size_t(reply.payload.size()));
}

}
