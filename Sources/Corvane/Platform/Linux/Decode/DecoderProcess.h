#pragma once

#include "Foundation/Result.h"
#include "Platform/Linux/Decode/DecodeMessages.h"

#include <QSocketNotifier>

namespace corvane {

struct SpawnedChild;

/// The parent's side of the decoder process: one order, one answer. Destroying it kills the child without waiting.
class DecoderProcess {
public:
    /// Either callback may destroy the process object.
    struct Receiver {
        std::function<void(DecodeReply)> reply; ///< the first one means that the child is ready
        std::function<void()> ended; ///< it exited, or violated the protocol
    };

    static Result<std::unique_ptr<DecoderProcess>> start(const QString& executable, Receiver receiver);
    ~DecoderProcess();
    DecoderProcess(const DecoderProcess&) = delete;
    DecoderProcess& operator=(const DecoderProcess&) = delete;

    bool isReady() const { return m_isReady; }
    bool give(const DecodeOrder& order, const Descriptor& file); ///< false: it is gone

    /// Reads what has arrived; called on its own, and before a timeout is declared.
    void hear();

private:
    DecoderProcess(SpawnedChild child, Receiver receiver);
    bool isExpected(const DecodeHead& head) const;
    bool readMore();

    std::shared_ptr<const Descriptor> m_handle;
    Descriptor m_socket;
    QSocketNotifier m_readable;
    Receiver m_receiver;
    std::optional<DecodeOrder> m_order; ///< not answered yet
    bool m_isReady = false;
    QByteArray m_heard;
};

}
