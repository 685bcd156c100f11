#pragma once

#include "Shell/AccountRow.h"

#include <QAbstractListModel>

namespace corvane {

/// The account rows, by channel. Roles: accountId, name, channel, channelLabel, status, detail, log, kind,
/// lastMessage (words), actions (a list of {id, label, confirmation, destructive}), sentence (for reading aloud).
class AccountsModel : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)
public:
    enum Role {
        AccountIdRole = Qt::UserRole,
        NameRole,
        ChannelRole,
        ChannelLabelRole,
        StatusRole,
        DetailRole,
        LogRole,
        KindRole,
        LastMessageRole,
        ActionsRole,
        SentenceRole
    };

    using QAbstractListModel::QAbstractListModel;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;
    int count() const { return int(m_rows.size()); }

    /// Touches only the rows that changed. `nowMs` decides how times are written.
    void setRows(const QList<AccountRow>& rows, qint64 nowMs);
    const QList<AccountRow>& rows() const { return m_rows; }

Q_SIGNALS:
    void countChanged();

private:
    QList<AccountRow> m_rows;
    qint64 m_nowMs = 0;
};

/// "Last message 14:20" for today, with the date before that; "No messages yet" for 0.
QString lastMessageText(qint64 ms, qint64 nowMs);

}
