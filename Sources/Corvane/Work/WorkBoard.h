#pragma once

#include "Presentation/RowListModel.h"
#include "Presentation/UndoOffer.h"
#include "Work/WorkLanes.h"
#include "Work/WorkRows.h"

namespace corvane {

/// A column of a board.
class WorkLane : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString countText READ countText NOTIFY changed)
    Q_PROPERTY(QString moreText READ moreText NOTIFY changed) ///< empty if every item is shown
    Q_PROPERTY(bool folded READ folded WRITE setFolded NOTIFY changed)
    Q_PROPERTY(corvane::HoldingListModel* items READ items CONSTANT)
public:
    explicit WorkLane(Scheduler& scheduler, QObject* parent);

    const QString& title() const { return m_title; }
    QString countText() const { return QString::number(m_count); }
    QString moreText() const;
    bool folded() const { return m_folded; }
    void setFolded(bool folded);
    HoldingListModel* items() { return &m_items; }
    const QList<WorkItemSeed>& rows() const { return m_items.rows(); }

    void show(const QString& title, int count, const QList<WorkItemSeed>& rows);

Q_SIGNALS:
    void changed();

private:
    QString m_title;
    int m_count = 0;
    bool m_folded = false;
    RowListModel<WorkItemSeed> m_items;
};

/// The items of a context, or of a module, in lanes that the user works with.
class WorkBoard : public QObject {
    Q_OBJECT
    Q_PROPERTY(int laneCount READ laneCount NOTIFY lanesChanged)
    Q_PROPERTY(QString words READ words WRITE setWords NOTIFY changed)
    Q_PROPERTY(QString owner READ owner WRITE setOwner NOTIFY changed)
    Q_PROPERTY(QString priority READ priority WRITE setPriority NOTIFY changed)
    Q_PROPERTY(QString kind READ kind WRITE setKind NOTIFY changed)
    Q_PROPERTY(QStringList owners READ owners NOTIFY changed)
    Q_PROPERTY(QStringList priorities READ priorities NOTIFY changed)
    Q_PROPERTY(QStringList kinds READ kinds NOTIFY changed)
    Q_PROPERTY(bool filtered READ filtered NOTIFY changed)
    Q_PROPERTY(QString undoText READ undoText NOTIFY changed)
    Q_PROPERTY(QString error READ error NOTIFY changed)
    Q_PROPERTY(QString emptyTitle READ emptyTitle NOTIFY changed) ///< empty if there are items
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY changed)
public:
    /// Both outlive the board.
    WorkBoard(LocalDB& db, Scheduler& scheduler, QObject* parent);

    /// Sets what the next reload shows; a new scope clears the filters.
    void setScope(const WorkItemFilter& scope, const WorkLanes& lanes);
    void setEmptyWords(const QString& title, const QString& text);
    void reload();

    int laneCount() const { return m_laneCount; }
    Q_INVOKABLE corvane::WorkLane* lane(int index) const;
    const QString& words() const { return m_filter.words; }
    void setWords(const QString& words) { filter(&WorkItemFilter::words, words); }
    const QString& owner() const { return m_filter.owner; }
    void setOwner(const QString& owner) { filter(&WorkItemFilter::owner, owner); }
    const QString& priority() const { return m_filter.priority; }
    void setPriority(const QString& priority) { filter(&WorkItemFilter::priority, priority); }
    const QString& kind() const { return m_filter.kind; }
    void setKind(const QString& kind) { filter(&WorkItemFilter::kind, kind); }
    const QStringList& owners() const { return m_choices.owners; }
    const QStringList& priorities() const { return m_choices.priorities; }
    const QStringList& kinds() const { return m_choices.kinds; }
    bool filtered() const;
    Q_INVOKABLE void clearFilters();
    const QString& undoText() const { return m_undo.text(); }
    const QString& error() const { return m_error; }
    QString emptyTitle() const;
    QString emptyText() const;

    Q_INVOKABLE void move(const QString& item, int lane); ///< a drop; does nothing if it is already there
    Q_INVOKABLE void moveBy(const QString& item, int lanes); ///< to the next lane that accepts items
    Q_INVOKABLE void showMore();
    Q_INVOKABLE void undo() { m_undo.take(); }
    Q_INVOKABLE void dismissUndo() { m_undo.dismiss(); }

Q_SIGNALS:
    void lanesChanged();
    void changed();
    void wrote(); ///< rows that other surfaces may show

private:
    void filter(QString WorkItemFilter::* field, const QString& value);
    bool write(const QString& item, const QString& status);

    LocalDB& m_db;
    Scheduler& m_scheduler;
    WorkItemFilter m_filter;
    WorkLanes m_lanes;
    QList<WorkLane*> m_laneObjects; ///< children; possibly more than are shown
    int m_laneCount = 0;
    int m_pages = 1;
    int m_total = 0;
    WorkItemWords m_choices;
    QString m_error;
    QString m_emptyTitle;
    QString m_emptyText;
    UndoOffer m_undo;
};

}
