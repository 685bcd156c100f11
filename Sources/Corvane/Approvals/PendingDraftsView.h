#pragma once

#include "Approvals/DraftActions.h"
#include "Approvals/DraftEdit.h"
#include "Presentation/RowListModel.h"
#include "Store/Approvals/OutboundQueries.h"

namespace corvane {

class AccountStore;
class ApprovalsStore;
class LocalDB;

/// A pending draft, as the bar shows it.
class PendingDraftItem {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString body MEMBER body)
    Q_PROPERTY(QString subject MEMBER subject)
    Q_PROPERTY(QList<corvane::DraftFile> files MEMBER files)
    Q_PROPERTY(QString preview MEMBER preview)
    Q_PROPERTY(QString status MEMBER status)
    Q_PROPERTY(QString statusLabel MEMBER statusLabel)
    Q_PROPERTY(int secondsLeft MEMBER secondsLeft)
    Q_PROPERTY(QString stateText MEMBER stateText)
    Q_PROPERTY(QString failureReason MEMBER failureReason)
    Q_PROPERTY(QString platform MEMBER platform)
    Q_PROPERTY(bool canDecide MEMBER canDecide)
    Q_PROPERTY(QString approveLabel MEMBER approveLabel)
    Q_PROPERTY(QList<corvane::DraftAction> actions MEMBER actions)
public:
    QString id;
    QString title;
    QString body;
    QString subject; ///< "Subject: ..."; empty for none
    QList<DraftFile> files;
    QString preview; ///< as much of the body as a line can show
    QString status;
    QString statusLabel;
    QString stateText; ///< the status in a word or two
    int secondsLeft = 0; ///< for undo; 0 if it can't be undone
    QString failureReason; ///< if it failed, or waits for the user or its engine
    QString platform; ///< such as "WHATSAPP"
    bool canDecide = false; ///< approve, reject and edit apply
    QString approveLabel; ///< "Approve & Send" or "Retry Send"
    QList<DraftAction> actions;

    static constexpr const char* role = "draft";
    const QString& key() const { return id; }
    bool operator==(const PendingDraftItem&) const = default;
};

/// The drafts of a person that wait for approval or for an acknowledgment, for the bar above the thread. Approving asks
/// for confirmation, one draft at a time; afterwards it can be undone for five seconds, here and on every other
/// surface.
class PendingDraftsView : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::HoldingListModel* rows READ rows CONSTANT) ///< of PendingDraftItem
    Q_PROPERTY(int count READ count NOTIFY changed)
    Q_PROPERTY(QString confirmDraft READ confirmDraft NOTIFY changed) ///< the id of the draft to confirm, or empty
    Q_PROPERTY(QString confirmText READ confirmText NOTIFY changed)
    Q_PROPERTY(QString notice READ notice NOTIFY changed) ///< why the last action had no effect, or empty
    Q_PROPERTY(corvane::DraftEdit* editor READ editor CONSTANT)
public:
    /// All references outlive the view.
    struct Surroundings {
        ApprovalsStore& approvals;
        DraftActions& actions;
        DraftEdit& editor;
        LocalDB& db;
        AccountStore& accounts;
        Scheduler& scheduler;
    };

    explicit PendingDraftsView(const Surroundings& surroundings, QObject* parent = nullptr);

    HoldingListModel* rows() { return &m_rows; }
    int count() const { return m_rows.rowCount(); }
    const QString& confirmDraft() const { return m_confirmDraft; }
    QString confirmText() const;
    const QString& notice() const;
    DraftEdit* editor() const;

    Q_INVOKABLE void askToConfirm(const QString& id); ///< replaces the draft asked about
    Q_INVOKABLE void cancelConfirm();
    Q_INVOKABLE void approveDraft(const QString& id); ///< the row as shown; also retries
    Q_INVOKABLE void reject(const QString& id);
    Q_INVOKABLE void undo(const QString& id);
    Q_INVOKABLE void perform(const QString& id, const QString& action); ///< one of the row's actions
    Q_INVOKABLE void dismissNotice();

Q_SIGNALS:
    void changed();

private:
    const PendingDraft* shown(const QString& id) const;
    const PendingDraft* decidable(const QString& id) const;
    PendingDraftItem itemOf(const PendingDraft& draft) const;
    void present();

    Surroundings m_at;
    QList<PendingDraft> m_drafts; ///< as shown
    RowListModel<PendingDraftItem> m_rows;
    QString m_confirmDraft;
};

}
