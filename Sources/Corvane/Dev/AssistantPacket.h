#pragma once

#include "Dev/DevDesk.h"
#include "Store/Work/WorkRecords.h"

namespace corvane {

/// What an agent reads before it continues a project. Secrets in rows and in the transcript are masked.
QString assistantContextPacket(const DevDesk& desk, const QString& request);

/// The same, from its parts.
struct AssistantPacketParts {
    QList<WorkItemRecord> items;
    QList<OpsAskRow> asks;
    QList<WorkMemoryRecord> memory;
    QString terminal; ///< the title of the selected one
    QString transcript; ///< redacted
    QString directory;
};
QString assistantContextPacket(const DevDesk& desk, const AssistantPacketParts& parts, const QString& request);

}
