#pragma once

#include "Presentation/RowListModel.h"
#include "Work/WorkLanes.h"
#include "Work/WorkRows.h"

namespace corvane {

/// A field that was changed elsewhere while the user edited it.
class WorkFieldClash {
    Q_GADGET
    Q_PROPERTY(QString label MEMBER label)
    Q_PROPERTY(QString mine MEMBER mine)
    Q_PROPERTY(QString theirs MEMBER theirs)
public:
    QString label;
    QString mine;
    QString theirs;

    bool operator==(const WorkFieldClash&) const = default;
};

/// One item, beside its board: its editable fields and its history.
class WorkItemSheet : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString itemId READ itemId NOTIFY changed) ///< empty while it is closed
    Q_PROPERTY(QString title READ title WRITE setTitle NOTIFY changed)
    Q_PROPERTY(QString kind READ kind WRITE setKind NOTIFY changed)
    Q_PROPERTY(QString priority READ priority WRITE setPriority NOTIFY changed)
    Q_PROPERTY(QString owner READ owner WRITE setOwner NOTIFY changed)
    Q_PROPERTY(QString summary READ summary WRITE setSummary NOTIFY changed)
    Q_PROPERTY(QString facts READ facts NOTIFY changed)
    Q_PROPERTY(QString lane READ lane NOTIFY changed)
    Q_PROPERTY(QStringList priorities READ priorities NOTIFY changed) ///< the usual ones, and its own
    Q_PROPERTY(bool dirty READ dirty NOTIFY changed)
    Q_PROPERTY(bool done READ done NOTIFY changed)
    Q_PROPERTY(QString notice READ notice NOTIFY changed) ///< an outside change, or the result of a save
    Q_PROPERTY(QList<corvane::WorkFieldClash> clashes READ clashes NOTIFY changed) ///< both versions; none: no conflict
    Q_PROPERTY(corvane::GadgetListModel* events READ events CONSTANT)
    Q_PROPERTY(QString eventsText READ eventsText NOTIFY changed)
public:
    WorkItemSheet(LocalDB& db, QObject* parent); ///< the database outlives it

    void setLanes(const WorkLanes& lanes) { m_lanes = lanes; }
    void reload(); ///< the row may have changed

    QString itemId() const { return m_seen.id; }
    const QString& title() const { return m_edited.title; }
    void setTitle(const QString& title) { edit(&WorkItemRecord::title, title); }
    const QString& kind() const { return m_edited.kind; }
    void setKind(const QString& kind) { edit(&WorkItemRecord::kind, kind); }
    const QString& priority() const { return m_edited.priority; }
    void setPriority(const QString& priority) { edit(&WorkItemRecord::priority, priority); }
    const QString& owner() const { return m_edited.owner; }
    void setOwner(const QString& owner) { edit(&WorkItemRecord::owner, owner); }
    const QString& summary() const { return m_edited.summary; }
    void setSummary(const QString& summary) { edit(&WorkItemRecord::summary, summary); }
    QString facts() const;
    QString lane() const;
    QStringList priorities() const;
    bool dirty() const { return !itemId().isEmpty() && m_edited != m_seen; }
    bool done() const;
    const QString& notice() const { return m_notice; }
    const QList<WorkFieldClash>& clashes() const { return m_clashes; }
    GadgetListModel* events() { return &m_events; }
    QString eventsText() const;

    Q_INVOKABLE void open(const QString& id);
    Q_INVOKABLE void close();
    Q_INVOKABLE void save();
    Q_INVOKABLE void revert();
    Q_INVOKABLE void keepMine(); ///< and overwrites the other version
    Q_INVOKABLE void takeTheirs();
    Q_INVOKABLE void markDone();

Q_SIGNALS:
    void changed();
    void opened();
    void wrote();

private:
    void edit(QString WorkItemRecord::* field, const QString& value);
    void adopt(const WorkItemRecord& row);
    void compare();
    void tell();

    LocalDB& m_db;
    WorkLanes m_lanes;
    WorkItemRecord m_seen; ///< the version that the edits are based on
    WorkItemRecord m_edited;
    std::optional<WorkItemRecord> m_theirs; ///< if it has changed since
    QString m_notice;
    QList<WorkFieldClash> m_clashes;
    RowListModel<OpsTimelineEvent> m_events;
};

}
