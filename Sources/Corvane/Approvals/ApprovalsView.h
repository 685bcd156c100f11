#pragma once

#include "Approvals/ApprovalRow.h"
#include "Approvals/ProposalLink.h"
#include "Foundation/Scheduler.h"
#include "Presentation/RowListModel.h"

#include <QHash>
#include <QVariantList>

namespace corvane {

class ApprovalsStore;
class LocalDB;

/// What waits for a person, and what they do about it, in the words of every surface: the panel at the tray, the
/// page and the settings. A draft that is approved goes out after five seconds, until which it can be undone. One
/// draft at a time is edited, and its new text kept here until it is saved.
class ApprovalsView : public QObject {
    Q_OBJECT
    Q_PROPERTY(QAbstractItemModel* rows READ rows CONSTANT) ///< of ApprovalRow, by what they stand under
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
    Q_PROPERTY(QString editing READ editing NOTIFY editingChanged) ///< the key of the draft that is edited, or empty
    Q_PROPERTY(QString editText READ editText WRITE setEditText NOTIFY editTextChanged)
    Q_PROPERTY(QObject* link READ link CONSTANT) ///< whom a change to the CRM is about
    Q_PROPERTY(QString notice READ notice NOTIFY changed) ///< what a person must know of their last edit, or empty
public:
    /// All of it outlives the view.
    ApprovalsView(ApprovalsStore& store, LocalDB& db, Scheduler& scheduler, QObject* parent = nullptr);
    ~ApprovalsView() override;

    QAbstractItemModel* rows() { return &m_rows; }
    int count() const { return m_rows.rowCount(); }
    int waiting() const { return m_waiting; }
    QString badge() const;
    QString waitingText() const;
    const QVariantMap& headCounts() const { return m_headCounts; }
    const QStringList& emptyLines() const { return m_emptyLines; }
    QString emptyTitle() const { return QStringLiteral("No pending approvals"); }
    QString emptyText() const;
    QString settingsEmptyText() const;
    QString sourceText() const { return QStringLiteral("Source: outbound_draft + work_decision"); }
    QString reviewLabel() const { return QStringLiteral("Review all in Approvals"); }
    const QString& editing() const { return m_editing; }
    const QString& editText() const { return m_editText; }
    void setEditText(const QString& text);
    ProposalLink* link() { return &m_link; }
    const QString& notice() const { return m_notice; }

    // By the key of a row; one that is gone, or stands otherwise by now, stays as it is.
    Q_INVOKABLE void approve(const QString& key); ///< a retry and an apply, too
    Q_INVOKABLE void reject(const QString& key);
    Q_INVOKABLE void undo(const QString& key);
    Q_INVOKABLE void edit(const QString& key);
    Q_INVOKABLE void saveEdit(); ///< a text of white space alone is not saved
    Q_INVOKABLE void cancelEdit();
    Q_INVOKABLE bool stepBack(); ///< leaves what is edited or linked; false where nothing is
    Q_INVOKABLE void dismissNotice();
    Q_INVOKABLE void refresh(); ///< as a surface comes up

Q_SIGNALS:
    void changed();
    void editingChanged();
    void editTextChanged();

private:
    const ApprovalRow* find(const QString& key) const;
    void present();
    void countDown();
    int secondsLeft(const QString& draftId) const;
    QList<ApprovalRow> currentRows();
    void leaveEdit();

    ApprovalsStore& m_store;
    LocalDB& m_db;
    Scheduler& m_scheduler;
    ProposalLink m_link;
    RowListModel<ApprovalRow> m_rows;
    QHash<QString, qint64> m_armedUntil; ///< by draft, in milliseconds since the epoch
    std::unique_ptr<Timer> m_countDown;
    int m_waiting = 0;
    QVariantMap m_headCounts;
    QStringList m_emptyLines;
    QString m_editing;
    QString m_editText;
    QString m_notice;
};

/// How much of what the store holds waits for a decision.
int waitingForDecision(const ApprovalsStore& store);

}
