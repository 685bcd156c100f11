#pragma once

#include "Foundation/Scheduler.h"
#include "Store/Approvals/OutgoingMessage.h"

#include <QHash>
#include <QString>

namespace corvane {

/// Unsent texts per contact, with subject and files, kept across contact switches, restarts and crashes. Stored in a
/// private file: the database is shared with other programs, and unfinished texts must not be. The file is updated
/// atomically within half a second after typing.
class UnsentTexts {
public:
    /// An unreadable file counts as empty and is copied aside before it is overwritten.
    UnsentTexts(const QString& filePath, Scheduler& scheduler);
    ~UnsentTexts(); ///< writes pending changes
    UnsentTexts(const UnsentTexts&) = delete;
    UnsentTexts& operator=(const UnsentTexts&) = delete;

    OutgoingMessage message(const QString& contactId) const { return m_messages.value(contactId); }
    void set(const QString& contactId, const OutgoingMessage& message); ///< an empty one is removed
    QStringList contactIds() const { return m_messages.keys(); }
    QList<OutgoingFile> files() const; ///< of all
    void forget(const QString& contactId); ///< it was sent and must not reappear: written at once

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
