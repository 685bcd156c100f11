#pragma once

#include "Presentation/Choice.h"
#include "Store/People/IdentityQueries.h"

#include <QObject>

namespace corvane {

class ApprovalsStore;
class LocalDB;

/// Whom a change to the CRM is about, where the program could not tell, or told wrong: a person picks the contact. One
/// proposal at a time.
class ProposalLink : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString proposalId READ proposalId NOTIFY changed) ///< the one that is linked, or empty
    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY changed)
    Q_PROPERTY(QString searchText READ searchText CONSTANT)
    Q_PROPERTY(QList<corvane::ContactChoice> people READ people NOTIFY changed)
    Q_PROPERTY(QString emptyText READ emptyText CONSTANT) ///< where nobody matches
    Q_PROPERTY(QString errorText READ errorText NOTIFY changed)
public:
    /// Both outlive the object.
    ProposalLink(ApprovalsStore& store, LocalDB& db, QObject* parent = nullptr);

    const QString& proposalId() const { return m_proposalId; }
    const QString& query() const { return m_query; }
    void setQuery(const QString& query);
    QString searchText() const { return QStringLiteral("Search contacts"); }
    const QList<ContactChoice>& people() const { return m_people; }
    QString emptyText() const { return QStringLiteral("Nobody of that name has written yet."); }
    const QString& errorText() const { return m_errorText; }

    Q_INVOKABLE void begin(const QString& proposalId);
    Q_INVOKABLE void choose(const QString& contactId); ///< ends it, unless the proposal could not be linked
    Q_INVOKABLE void cancel();

Q_SIGNALS:
    void changed();

private:
    void search();

    ApprovalsStore& m_store;
    LocalDB& m_db;
    QString m_proposalId;
    QString m_query;
    QList<ContactLink> m_contacts; ///< all, while somebody is picked
    QList<ContactChoice> m_people;
    QString m_errorText;
};

}
