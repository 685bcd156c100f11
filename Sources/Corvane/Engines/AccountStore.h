#pragma once

#include "Engines/Account.h"

#include <QList>
#include <QObject>

namespace corvane {

/// The user's accounts, in "accounts.json". A file that cannot be decoded is copied aside before it is overwritten for
/// the first time. Main thread only.
class AccountStore : public QObject {
    Q_OBJECT
public:
    /// Loads "{folder}/accounts.json", creating the folder if necessary.
    explicit AccountStore(const QString& folder, QObject* parent = nullptr);

    const QList<Account>& accounts() const { return m_accounts; }
    std::optional<Account> find(const QUuid& id) const;
    std::optional<Account> findBySlug(const QString& slug) const;

    Account add(const QString& name, Channel channel);
    void update(const Account& account); ///< no effect if no account has that id
    void remove(const Account& account);
    int nextFreePort() const; ///< from 8790 upward

Q_SIGNALS:
    void accountsChanged();

private:
    void save();
    QString freeSlug(const QString& name) const;

    QString m_filePath;
    QList<Account> m_accounts;
    bool m_fileIsDamaged = false;
};

/// The array in an accounts file; nothing if it cannot be decoded.
std::optional<QList<Account>> decodeAccounts(const QByteArray& json);
QByteArray encodeAccounts(const QList<Account>& accounts);

}
