#pragma once

#include "Approvals/ApprovalRow.h"
#include "Approvals/DecisionLog.h"
#include "Approvals/DraftEdit.h"
#include "CRM/ContactPick.h"
#include "Foundation/Literals.h"
#include "Presentation/RowListModel.h"

#include <QHash>

namespace corvane {

class ApprovalsStore;
class LocalDB;

/// The headings of the list, and how many items stand under each.
class ApprovalHeads {
    Q_GADGET
public:
    Q_INVOKABLE QString title(const QString& head) const; ///< with the number, if there are any
    int count(const QString& head) const { return m_counts.value(head); }
    void add(const QString& head) { ++m_counts[head]; }

private:
    QHash<QString, int> m_counts;
};

/// The pending items and the user's actions on them, for every surface: the panel at the tray, the page and the
/// settings. Each verdict can be undone for five seconds; risky decisions must be confirmed before they are approved,
/// one at a time.
class ApprovalsView : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::HoldingListModel* rows READ rows CONSTANT) ///< of ApprovalRow, grouped by heading
    Q_PROPERTY(int count READ count NOTIFY changed)
    Q_PROPERTY(int waiting READ waiting NOTIFY changed) ///< undecided items
    Q_PROPERTY(QString badge READ badge NOTIFY changed)
    Q_PROPERTY(QString waitingText READ waitingText NOTIFY changed)
    Q_PROPERTY(corvane::ApprovalHeads heads READ heads NOTIFY changed)
    Q_PROPERTY(QStringList emptyLines READ emptyLines NOTIFY changed) ///< one for each kind without pending items
    Q_PROPERTY(QString emptyTitle READ emptyTitle CONSTANT)
    Q_PROPERTY(QString emptyText READ emptyText CONSTANT)
    Q_PROPERTY(QString settingsEmptyText READ settingsEmptyText CONSTANT)
    Q_PROPERTY(QString sourceText READ sourceText CONSTANT)
    Q_PROPERTY(QString reviewLabel READ reviewLabel CONSTANT)
    Q_PROPERTY(QString asking READ asking NOTIFY askingChanged) ///< the key of the item to confirm, or empty
    Q_PROPERTY(int askingRow READ askingRow NOTIFY askingChanged) ///< its index, or -1
    Q_PROPERTY(QString notice READ notice NOTIFY changed) ///< why the last verdict had no effect, or empty
    Q_PROPERTY(corvane::DraftEdit* editor READ editor CONSTANT)
    Q_PROPERTY(corvane::ContactPick* link READ link CONSTANT) ///< the contact of a CRM change
    Q_PROPERTY(corvane::DecisionLog* log READ log CONSTANT) ///< past decisions
public:
    /// All of it outlives the view.
    ApprovalsView(
        ApprovalsStore& store, DraftActions& actions, LocalDB& db, Scheduler& scheduler, QObject* parent = nullptr);
    ~ApprovalsView() override;

    HoldingListModel* rows() { return &m_rows; }
    int count() const { return m_rows.rowCount(); }
    int waiting() const { return m_waiting; }
    QString badge() const;
    QString waitingText() const;
    const ApprovalHeads& heads() const { return m_heads; }
    const QStringList& emptyLines() const { return m_emptyLines; }
    QString emptyTitle() const { return u"No pending approvals"_s; }
    QString emptyText() const;
    QString settingsEmptyText() const;
    QString sourceText() const
    {
        return u"Messages, record changes, decisions and events, from here and from agents."_s;
    }
    QString reviewLabel() const { return u"Review all in Approvals"_s; }
    const QString& asking() const { return m_asked.key(); }
    int askingRow() const;
    const QString& notice() const;
    DraftEdit* editor() { return &m_editor; }
    ContactPick* link() { return &m_link; }
    DecisionLog* log() { return &m_log; }

    // By a row's key; nothing happens if the row is gone or has changed.
    Q_INVOKABLE void approve(const QString& key); ///< also retries and applies; a risky item is asked about instead
    Q_INVOKABLE void confirm(); ///< approves the item being asked about
    Q_INVOKABLE void reject(const QString& key);
    Q_INVOKABLE void undo(const QString& key);
    Q_INVOKABLE void edit(const QString& key);
    Q_INVOKABLE void perform(const QString& key, const QString& action); ///< one of the row's actions
    Q_INVOKABLE bool stepBack(); ///< leaves a question, an edit or a link; false if there is none
    Q_INVOKABLE void dismissNotice();
    Q_INVOKABLE void refresh(); ///< when a surface is shown

Q_SIGNALS:
    void changed();
    void askingChanged();

private:
    const ApprovalRow* find(const QString& key) const;
    const ApprovalRow* decidable(const QString& key) const;
    void decide(const ApprovalRow& row, Verdict verdict);
    void ask(const QString& key); ///< an unknown key closes the question
    void present();
    std::optional<Arming> arming(ApprovalKind kind, const QString& id) const;
    QList<ApprovalRow> currentRows() const;

    ApprovalsStore& m_store;
    DraftActions& m_actions;
    LocalDB& m_db;
    Scheduler& m_scheduler;
    DraftEdit m_editor;
    ContactPick m_link;
    DecisionLog m_log;
    RowListModel<ApprovalRow> m_rows;
    int m_waiting = 0;
    ApprovalHeads m_heads;
    QStringList m_emptyLines;
    ApprovalRow m_asked; ///< as it was when it was asked
};

}
