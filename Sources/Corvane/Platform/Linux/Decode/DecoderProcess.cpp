#include "Platform/Linux/Decode/DecoderProcess.h"

#include "Foundation/Literals.h"
#include "Platform/Linux/Processes/SpawnedChild.h"

#include <QCoreApplication>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <sys/socket.h>

namespace corvane {

namespace {

constexpr int mostChunks = 64; ///< more than any answer has

/// Reaps the child once it has exited; when the program exits first, the system does.
void reapLater(const std::shared_ptr<const Descriptor>& handle)
{
    auto* const ended = new QSocketNotifier(handle->number(), QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(ended, &QSocketNotifier::activated, ended, [ended, handle] {
        ended->setEnabled(false);
        reapChild(*handle);
        ended->deleteLater();
    });
}

}

Result<std::unique_ptr<DecoderProcess>> DecoderProcess::start(const QString& executable, Receiver receiver)
{
    auto child
        = spawnOverSocket({ executable, { u"--decode"_s }, {}, QProcessEnvironment::systemEnvironment(), false });
    if (!child)
        return std::unexpected(child.error());
    return std::unique_ptr<DecoderProcess>(new DecoderProcess(std::move(*child), std::move(receiver)));
}

DecoderProcess::DecoderProcess(SpawnedChild child, Receiver receiver)
    : m_handle(std::move(child.handle))
    , m_socket(std::move(child.input))
    , m_readable(m_socket.number(), QSocketNotifier::Read)
    , m_receiver(std::move(receiver))
{
    QObject::connect(&m_readable, &QSocketNotifier::activated, &m_readable, [this] { hear(); });
}

DecoderProcess::~DecoderProcess()
{
    signalChild(*m_handle, SIGKILL);
    reapLater(m_handle);
}

bool DecoderProcess::give(const DecodeOrder& order, const Descriptor& file)
{
    m_order = order;
    return sendOrder(m_socket, order, file);
}

void DecoderProcess::hear()
{
    const bool isOpen = readMore();
    DecodeReply reply;
    if (m_heard.size() >= qsizetype(sizeof reply.head)) {
        std::memcpy(&reply.head, m_heard.constData(), sizeof reply.head);
        const qsizetype whole = qsizetype(sizeof reply.head) + qsizetype(reply.head.payload);
        if (!isExpected(reply.head) || m_heard.size() > whole)
            return std::exchange(m_receiver.ended, {})();
        if (m_heard.size() == whole) {
            reply.payload = m_heard.sliced(sizeof reply.head);
            m_heard.clear();
            m_order.reset();
            m_isReady = true;
            return std::function(m_receiver.reply)(std::move(reply));
        }
    }
    if (!isOpen)
        std::exchange(m_receiver.ended, {})();
}

bool DecoderProcess::isExpected(const DecodeHead& head) const
{
    if (!m_isReady)
        return head.kind == DecodeHead::Kind::Ready && head.payload == 0;
    return m_order && fitsOrder(head, *m_order);
}

/// Reads what has arrived, limited for a child that never stops; false at the end of the stream.
bool DecoderProcess::readMore()
{
    std::array<char, 256 * 1024> chunk;
    for (int i = 0; i < mostChunks; ++i) {
        const ssize_t count = ::recv(m_socket.number(), chunk.data(), chunk.size(), MSG_DONTWAIT);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0 && errno == EAGAIN)
            return true;
        if (count <= 0)
            return false;
        m_heard.append(chunk.data(), count);
        if (count < ssize_t(chunk.size()))
            return true;
    }
    return true;
}

}
