#pragma once

#include "Foundation/Coalescer.h"
#include "Foundation/Literals.h"
#include "Presentation/RowListModel.h"
#include "Settings/AccountRow.h"
#include "Settings/ConnectForm.h"
#include "Settings/MailForm.h"
#include "Settings/PairingSheet.h"

namespace corvane {

/// The accounts of the settings: their state and actions, and the sheets that connect others.
class AccountsView : public QObject {
    Q_OBJECT
    /// Grouped by channel; the properties of `AccountRow` are the roles.
    Q_PROPERTY(corvane::GadgetListModel* rows READ rows CONSTANT)
    Q_PROPERTY(QString emptyTitle READ emptyTitle CONSTANT)
    Q_PROPERTY(QString emptyText READ emptyText CONSTANT)
    /// One per channel, for `connectChannel`.
    Q_PROPERTY(QList<corvane::ConnectFlow> connectFlows READ connectFlows CONSTANT)
    Q_PROPERTY(corvane::ConnectForm* connectForm READ connectForm CONSTANT)
    Q_PROPERTY(corvane::MailForm* mailForm READ mailForm CONSTANT)
    Q_PROPERTY(corvane::PairingSheet* pairing READ pairing CONSTANT)
public:
    /// All references outlive the view.
    AccountsView(const AccountSetup& setup, const AppPaths& paths, ProcessLauncher& launcher, Scheduler& scheduler,
        QObject* parent = nullptr);

    GadgetListModel* rows() { return &m_rows; }
    QString emptyTitle() const { return u"No accounts yet"_s; }
    QString emptyText() const { return u"Connect a channel and its messages appear in the inbox."_s; }
    const QList<ConnectFlow>& connectFlows() const { return corvane::connectFlows(); }
    ConnectForm* connectForm() { return &m_connectForm; }
    MailForm* mailForm() { return &m_mailForm; }
    PairingSheet* pairing() { return &m_pairing; }

    void setVisible(bool visible); ///< last message times are read only while visible

    /// One of the actions of a row. Actions with a `confirmation` were confirmed before.
    Q_INVOKABLE void perform(const QString& accountId, const QString& actionId);

    /// Opens the channel's sheet; a channel that needs no input is connected at once.
    Q_INVOKABLE void connectChannel(const QString& channel);

private:
    void refresh();
    void edit(const Account& account);

    const AccountSetup m_setup;
    Scheduler& m_scheduler;
    RowListModel<AccountRow> m_rows;
    ConnectForm m_connectForm;
    MailForm m_mailForm;
    PairingSheet m_pairing;
    Coalescer m_refresh;
    QHash<QString, qint64> m_lastMessages; ///< by slug, milliseconds since the epoch
    bool m_visible = false;
};

}
