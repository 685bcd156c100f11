#pragma once

#include "Foundation/Scheduler.h"
#include "Store/Approvals/OutgoingMessage.h"

#include <QHash>
#include <QString>

namespace corvane {

/// What was written to each contact and not sent, with its subject and files, kept across a switch of contact, a
/// restart and a kill. It stands in a private file of this machine: the database is shared with other programs, and
/// what is not said yet is nobody else's. The file follows the keys within half a second and is replaced in one step.
class UnsentTexts {
public:
    /// A file that does not read counts as empty and is copied aside before it is written over.
    UnsentTexts(const QString& filePath, Scheduler& scheduler);
    ~UnsentTexts(); ///< writes what is not written yet
    UnsentTexts(const UnsentTexts&) = delete;
    UnsentTexts& operator=(const UnsentTexts&) = delete;

    OutgoingMessage message(const QString& contactId) const { return m_messages.value(contactId); }
    void set(const QString& contactId, const OutgoingMessage& message); ///< an empty one is forgotten
    QStringList contactIds() const { return m_messages.keys(); }
    QList<OutgoingFile> files() const; ///< of all
    void forget(const QString& contactId); ///< it was sent, and must not come back: written at once

private:
    void load();
    void write();

    const QString m_filePath;
    Scheduler& m_scheduler;
    QHash<QString, OutgoingMessage> m_messages;
    bool m_fileIsDamaged = false;
    std::unique_ptr<Timer> m_writeSoon;
};

}
