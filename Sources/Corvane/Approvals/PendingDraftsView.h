#pragma once

#include "Presentation/RowListModel.h"
#include "Store/Approvals/DraftApprovals.h"

namespace corvane {

class AccountStore;
class EngineManager;

/// A draft that waits, in the words of the screen.
class PendingDraftItem {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString body MEMBER body)
    Q_PROPERTY(QString preview MEMBER preview)
    Q_PROPERTY(QString status MEMBER status)
    Q_PROPERTY(QString statusLabel MEMBER statusLabel)
    Q_PROPERTY(QString failureReason MEMBER failureReason)
    Q_PROPERTY(QString platform MEMBER platform)
    Q_PROPERTY(bool canDecide MEMBER canDecide)
    Q_PROPERTY(QString approveLabel MEMBER approveLabel)
public:
    QString id;
    QString title;
    QString body;
    QString preview; ///< as much of the body as a line can show
    QString status;
    QString statusLabel;
    QString failureReason; ///< of one that failed, or waits for a person again
    QString platform; ///< such as "WHATSAPP"
    bool canDecide = false; ///< approve, reject and edit apply
    QString approveLabel; ///< "Approve & Send" or "Retry Send"

    const QString& key() const { return id; }
    bool operator==(const PendingDraftItem&) const = default;
};

/// What waits for a person before it goes out, or for an acknowledgment after it went. Approving one asks first,
/// one draft at a time.
class PendingDraftsView : public QObject {
    Q_OBJECT
    Q_PROPERTY(QAbstractItemModel* rows READ rows CONSTANT) ///< of PendingDraftItem
    Q_PROPERTY(int count READ count NOTIFY changed)
    Q_PROPERTY(
        QString confirmDraft READ confirmDraft NOTIFY changed) ///< the id of the one that is asked about, or empty
    Q_PROPERTY(QString confirmText READ confirmText CONSTANT)
    Q_PROPERTY(QString notice READ notice NOTIFY changed) ///< why the last action did nothing, or empty
public:
    /// Both outlive the view.
    PendingDraftsView(EngineManager& engine, AccountStore& accounts, QObject* parent = nullptr);

    QAbstractItemModel* rows() { return &m_rows; }
    int count() const { return m_rows.rowCount(); }
    const QString& confirmDraft() const { return m_confirmDraft; }
    QString confirmText() const { return QStringLiteral("Send this message?"); }
    const QString& notice() const { return m_notice; }

    Q_INVOKABLE void askToConfirm(const QString& id); ///< another one that was asked about no longer is
    Q_INVOKABLE void cancelConfirm();
    Q_INVOKABLE void approveDraft(const QString& id); ///< sends what the row shows, at once; a retry, too
    Q_INVOKABLE void reject(const QString& id);
    Q_INVOKABLE void edit(const QString& id, const QString& body); ///< an empty text changes nothing
    Q_INVOKABLE void dismissNotice();

Q_SIGNALS:
    void changed();

private:
    const PendingDraft* decidable(const QString& id) const;
    void present();
    void afterAction(Decided decided);

    EngineManager& m_engine;
    AccountStore& m_accounts;
    QList<PendingDraft> m_drafts; ///< as shown
    RowListModel<PendingDraftItem> m_rows;
    QString m_confirmDraft;
    QString m_notice;
};

}
