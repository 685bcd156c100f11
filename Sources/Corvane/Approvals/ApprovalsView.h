#pragma once

#include "Approvals/ApprovalRow.h"
#include "Approvals/DecisionLog.h"
#include "Approvals/DraftEdit.h"
#include "CRM/ContactPick.h"
#include "Foundation/Literals.h"
#include "Presentation/RowListModel.h"

#include <QVariantMap>

namespace corvane {

class ApprovalsStore;
class LocalDB;

/// What waits for a person, and what they do about it, in the words of every surface: the panel at the tray, the
/// page and the settings. Each verdict can be undone for five seconds; a risky decision is asked about before it is
/// approved, one at a time.
class ApprovalsView : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::HoldingListModel* rows READ rows CONSTANT) ///< of ApprovalRow, by what they stand under
    Q_PROPERTY(int count READ count NOTIFY changed)
    Q_PROPERTY(int waiting READ waiting NOTIFY changed) ///< for a decision; what is on its way counts no more
    Q_PROPERTY(QString badge READ badge NOTIFY changed)
    Q_PROPERTY(QString waitingText READ waitingText NOTIFY changed)
    Q_PROPERTY(QVariantMap headCounts READ headCounts NOTIFY changed) ///< by head
    Q_PROPERTY(QStringList emptyLines READ emptyLines NOTIFY changed) ///< one for each kind of which nothing waits
    Q_PROPERTY(QString emptyTitle READ emptyTitle CONSTANT)
    Q_PROPERTY(QString emptyText READ emptyText CONSTANT)
    Q_PROPERTY(QString settingsEmptyText READ settingsEmptyText CONSTANT)
    Q_PROPERTY(QString sourceText READ sourceText CONSTANT)
    Q_PROPERTY(QString reviewLabel READ reviewLabel CONSTANT)
    Q_PROPERTY(QString asking READ asking NOTIFY askingChanged) ///< the key of what is asked about, or empty
    Q_PROPERTY(int askingRow READ askingRow NOTIFY askingChanged) ///< its place, or -1
    Q_PROPERTY(QString notice READ notice NOTIFY changed) ///< why the last verdict changed nothing, or empty
    Q_PROPERTY(corvane::DraftEdit* editor READ editor CONSTANT)
    Q_PROPERTY(corvane::ContactPick* link READ link CONSTANT) ///< whom a change to the CRM is about
    Q_PROPERTY(corvane::DecisionLog* log READ log CONSTANT) ///< what was decided
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
    const QVariantMap& headCounts() const { return m_headCounts; }
    const QStringList& emptyLines() const { return m_emptyLines; }
    QString emptyTitle() const { return u"No pending approvals"_s; }
    QString emptyText() const;
    QString settingsEmptyText() const;
    QString sourceText() const { return u"Source: outbound_draft + work_decision"_s; }
    QString reviewLabel() const { return u"Review all in Approvals"_s; }
    const QString& asking() const { return m_asked.key(); }
    int askingRow() const;
    const QString& notice() const;
    DraftEdit* editor() { return &m_editor; }
    ContactPick* link() { return &m_link; }
    DecisionLog* log() { return &m_log; }

    // By the key of a row; one that is gone, or stands otherwise by now, stays as it is.
    Q_INVOKABLE void approve(const QString& key); ///< a retry and an apply, too; a risky one is asked about instead
    Q_INVOKABLE void confirm(); ///< approves what is asked about
    Q_INVOKABLE void reject(const QString& key);
    Q_INVOKABLE void undo(const QString& key);
    Q_INVOKABLE void edit(const QString& key);
    Q_INVOKABLE void perform(const QString& key, const QString& action); ///< one of the row's actions
    Q_INVOKABLE bool stepBack(); ///< leaves what is asked, edited or linked; false where nothing is
    Q_INVOKABLE void dismissNotice();
    Q_INVOKABLE void refresh(); ///< as a surface comes up

Q_SIGNALS:
    void changed();
    void askingChanged();

private:
    const ApprovalRow* find(const QString& key) const;
    const ApprovalRow* decidable(const QString& key) const;
    void decide(const ApprovalRow& row, Verdict verdict);
    void ask(const QString& key); ///< one that is not there ends the question
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
    QVariantMap m_headCounts;
    QStringList m_emptyLines;
    ApprovalRow m_asked; ///< as it stood when it was asked
};

}
