#pragma once

#include "Foundation/Result.h"
#include "Platform/Linux/Decode/DecodeMessages.h"

#include <QSocketNotifier>

namespace corvane {

struct SpawnedChild;

/// The child that reads strangers' files, as this side sees it: one order, one answer. Destroying it kills the child
/// and waits for nothing.
class DecoderProcess {
public:
    /// Either may destroy the process object.
    struct Receiver {
        std::function<void(DecodeReply)> reply; ///< the first one says that the child is ready
        std::function<void()> ended; ///< it ended, or said what it should not
    };

    static Result<std::unique_ptr<DecoderProcess>> start(const QString& executable, Receiver receiver);
    ~DecoderProcess();
    DecoderProcess(const DecoderProcess&) = delete;
    DecoderProcess& operator=(const DecoderProcess&) = delete;

    bool isReady() const { return m_isReady; }
    bool give(const DecodeOrder& order, const Descriptor& file); ///< false: it is gone

    /// Takes what has arrived; called by itself, and by who is about to lose patience.
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
