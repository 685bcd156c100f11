#pragma once

#include "Foundation/Literals.h"
#include "Platform/PortHolders.h"

#include <QString>

namespace corvane {

/// Reads the kernel's socket tables.
class ProcPortHolders final : public PortHolders {
public:
    explicit ProcPortHolders(const QString& procFolder = u"/proc"_s);

    QList<PortHolder> listeningOn(quint16 port) override;
    quint32 ownUserId() override;
    qint64 ownProcessId() override;
    void terminate(qint64 pid) override;

private:
    const QString m_procFolder;
};

}
