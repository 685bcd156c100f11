#pragma once

#include <QList>

namespace corvane {

/// A process that listens on a TCP port.
struct PortHolder {
    qint64 pid = 0;
    quint32 userId = 0;
};

/// The processes that listen on ports. May be called on any thread.
class PortHolders {
public:
    virtual ~PortHolders() = default;

    /// All processes that listen on the port, IPv4 or IPv6; those of other users are missing.
    virtual QList<PortHolder> listeningOn(quint16 port) = 0;
    virtual quint32 ownUserId() = 0;
    virtual qint64 ownProcessId() = 0;
    virtual void terminate(qint64 pid) = 0; ///< SIGTERM
};

}
