#pragma once

#include "Dev/DevDesk.h"
#include "Presentation/Choice.h"
#include "Work/WorkDecisions.h"

namespace corvane {

/// Knowledge about a project: proposed from a draft, a template or a terminal, and approved by the user.
class DevMemory : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::WorkDecisions* rows READ rows CONSTANT)
    Q_PROPERTY(QString draft READ memoryDraft WRITE setMemoryDraft NOTIFY changed)
    Q_PROPERTY(QString kind READ memoryDraftKind WRITE setMemoryDraftKind NOTIFY changed)
    Q_PROPERTY(QStringList kinds READ kinds CONSTANT)
    Q_PROPERTY(QList<corvane::Choice> templates READ templates CONSTANT)
    Q_PROPERTY(bool hasTerminal READ hasTerminal NOTIFY changed)
    Q_PROPERTY(QString rule READ rule CONSTANT)
    Q_PROPERTY(QString emptyTitle READ emptyTitle CONSTANT)
    Q_PROPERTY(QString emptyText READ emptyText CONSTANT)
    Q_PROPERTY(QString notice READ notice NOTIFY changed)
    Q_PROPERTY(bool failed READ failed NOTIFY changed)
public:
    DevMemory(DevDesk& desk, QObject* parent);

    void reload();

    WorkDecisions* rows() { return &m_rows; }
    const QString& memoryDraft() const { return m_draft; }
    void setMemoryDraft(const QString& draft);
    const QString& memoryDraftKind() const { return m_kind; }
    void setMemoryDraftKind(const QString& kind);
    QStringList kinds() const { return { u"fact"_s, u"command"_s, u"lesson"_s }; }
    QList<Choice> templates() const;
    bool hasTerminal() const { return m_desk.session(); }
    QString rule() const { return u"Credentials, billing tokens, and private personal notes do not belong here."_s; }
    QString emptyTitle() const { return u"No knowledge yet"_s; }
    QString emptyText() const;
    const QString& notice() const { return m_notice; }
    bool failed() const { return m_failed; }

    Q_INVOKABLE void stageMemoryDraft(const QString& kind); ///< replaces the draft with a template of that kind
    Q_INVOKABLE void proposeMemory();
    Q_INVOKABLE void saveTerminalTranscriptMemory();
    Q_INVOKABLE void dismissNotice() { tell({}, false); }

Q_SIGNALS:
    void changed();
    void wrote();

private:
    bool propose(const QString& kind, const QString& body, const QString& source);
    void tell(const QString& notice, bool failed);

    DevDesk& m_desk;
    WorkDecisions m_rows;
    QString m_draft;
    QString m_kind = u"fact"_s;
    QString m_notice;
    bool m_failed = false;
};

}
