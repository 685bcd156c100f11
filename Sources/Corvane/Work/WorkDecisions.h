#pragma once

#include "Foundation/Literals.h"
#include "Presentation/RowListModel.h"
#include "Work/WorkConsoleConfig.h"
#include "Work/WorkCreateFlows.h"

namespace corvane {

/// A decision, as the screen shows it.
class WorkDecisionSeed {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString status MEMBER status)
    Q_PROPERTY(QString risk MEMBER risk)
    Q_PROPERTY(QString proposal MEMBER proposal)
    Q_PROPERTY(QString rationale MEMBER rationale)
    Q_PROPERTY(QString facts MEMBER facts)
    Q_PROPERTY(QString question MEMBER question)
    Q_PROPERTY(bool waits MEMBER waits)
public:
    QString id;
    QString title;
    QString status; ///< in words
    QString risk; ///< in words; empty for none
    QString proposal;
    QString rationale;
    QString facts;
    QString question; ///< asked before an approval; empty if one press is enough
    bool waits = false;

    static constexpr const char* role = "decision";
    const QString& key() const { return id; }
    bool operator==(const WorkDecisionSeed&) const = default;
};

/// A proposed memory.
class WorkMemorySeed {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString kind MEMBER kind)
    Q_PROPERTY(QString body MEMBER body)
    Q_PROPERTY(QString status MEMBER status)
    Q_PROPERTY(QString source MEMBER source)
    Q_PROPERTY(QString facts MEMBER facts)
    Q_PROPERTY(bool waits MEMBER waits)
public:
    QString id;
    QString kind;
    QString body;
    QString status;
    QString source;
    QString facts;
    bool waits = false;

    static constexpr const char* role = "memory";
    const QString& key() const { return id; }
    bool operator==(const WorkMemorySeed&) const = default;
};

class DateWords;
WorkDecisionSeed decisionSeed(const WorkDecisionRecord& decision, const DateWords& words);
WorkMemorySeed memorySeed(const WorkMemoryRecord& memory, const DateWords& words);

/// The pending and past decisions and proposed memory of a context or module. A decision is a record: nothing is
/// executed here.
class WorkDecisions : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::HoldingListModel* decisions READ decisions CONSTANT)
    Q_PROPERTY(corvane::HoldingListModel* memory READ memory CONSTANT)
    Q_PROPERTY(QString error READ error NOTIFY changed)
    Q_PROPERTY(QString emptyTitle READ emptyTitle CONSTANT)
    Q_PROPERTY(QString emptyText READ emptyText CONSTANT)
public:
    WorkDecisions(LocalDB& db, Scheduler& scheduler, QObject* parent); ///< both outlive it

    /// Without a module: the memory of every module, and no decisions.
    void setScope(const QString& module, const WorkContext& context);
    void reload();

    HoldingListModel* decisions() { return &m_decisions; }
    HoldingListModel* memory() { return &m_memory; }
    const QList<WorkDecisionSeed>& decisionRows() const { return m_decisions.rows(); }
    const QList<WorkMemorySeed>& memoryRows() const { return m_memory.rows(); }
    const QString& error() const { return m_error; }
    QString emptyTitle() const { return u"No decisions yet"_s; }
    QString emptyText() const;

    Q_INVOKABLE void decide(const QString& id, bool approve);
    Q_INVOKABLE void decideMemory(const QString& id, bool approve);

Q_SIGNALS:
    void changed();
    void wrote();

private:
    WorkPlace placeOf(const QString& module, const QString& contextId) const;
    template <typename Record, typename SetStatus>
    void decideSeen(const Record& record, bool approve, SetStatus setStatus, const QString& refusal);
    void told(bool written, const QString& refusal);

    LocalDB& m_db;
    QString m_module;
    WorkContext m_context;
    QHash<QString, WorkDecisionRecord> m_seen; ///< as shown: the versions that the user decides on
    QHash<QString, WorkMemoryRecord> m_seenMemory;
    QString m_error;
    RowListModel<WorkDecisionSeed> m_decisions;
    RowListModel<WorkMemorySeed> m_memory;
};

}
