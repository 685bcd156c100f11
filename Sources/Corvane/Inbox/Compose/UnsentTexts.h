#pragma once

#include "Foundation/Scheduler.h"

#include <QHash>
#include <QString>

namespace corvane {

/// What was typed to each contact and not sent, kept across a switch of contact, a restart and a kill. It stands in
/// a private file of this machine: the database is shared with other programs, and what is not said yet is nobody
/// else's. The file follows the keys within half a second and is replaced in one step.
class UnsentTexts {
public:
    /// A file that does not read counts as empty and is copied aside before it is written over.
    UnsentTexts(const QString& filePath, Scheduler& scheduler);
    ~UnsentTexts(); ///< writes what is not written yet
    UnsentTexts(const UnsentTexts&) = delete;
    UnsentTexts& operator=(const UnsentTexts&) = delete;

    QString text(const QString& contactId) const { return m_texts.value(contactId); }
    void setText(const QString& contactId, const QString& text); ///< an empty text is forgotten
    QStringList contactIds() const { return m_texts.keys(); }
    void forget(const QString& contactId); ///< it was sent, and must not come back: written at once

private:
    void load();
    void write();

    const QString m_filePath;
    Scheduler& m_scheduler;
    QHash<QString, QString> m_texts;
    bool m_fileIsDamaged = false;
    std::unique_ptr<Timer> m_writeSoon;
};

}
