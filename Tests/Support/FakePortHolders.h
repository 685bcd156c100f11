#pragma once

#include "Platform/PortHolders.h"

#include <mutex>

namespace corvane {

/// Port holders set by the test. Records the ports that were asked about and the processes that were terminated.
class FakePortHolders final : public PortHolders {
public:
    QList<PortHolder> listeningOn(quint16 port) override
    {
        const std::lock_guard lock(m_mutex);
        m_askedPorts.append(port);
        return m_holders;
    }
    quint32 ownUserId() override { return 500; }
    qint64 ownProcessId() override { return 42; }
    void terminate(qint64 pid) override
    {
        const std::lock_guard lock(m_mutex);
        m_terminated.append(pid);
    }

    void setHolders(const QList<PortHolder>& holders)
    {
        const std::lock_guard lock(m_mutex);
        m_holders = holders;
    }
    QList<qint64> terminated() const
    {
        const std::lock_guard lock(m_mutex);
        return m_terminated;
    }
    QList<quint16> askedPorts() const
    {
        const std::lock_guard lock(m_mutex);
        return m_askedPorts;
    }

private:
    mutable std::mutex m_mutex;
    QList<PortHolder> m_holders;
    QList<qint64> m_terminated;
    QList<quint16> m_askedPorts;
};

}
