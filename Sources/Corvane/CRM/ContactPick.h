#pragma once

#include "Foundation/Literals.h"
#include "Presentation/Choice.h"
#include "Store/People/IdentityQueries.h"

#include <QObject>
#include <functional>

namespace corvane {

class LocalDB;

/// Asks the user which contact something is about, when the program could not tell or was wrong. One thing at a time.
class ContactPick : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString subject READ subject NOTIFY changed) ///< what the contact is picked for, or empty
    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY changed)
    Q_PROPERTY(QString searchText READ searchText CONSTANT)
    Q_PROPERTY(QList<corvane::ContactChoice> people READ people NOTIFY changed)
    Q_PROPERTY(QString emptyText READ emptyText CONSTANT) ///< shown if nobody matches
    Q_PROPERTY(QString errorText READ errorText NOTIFY changed)
public:
    using Link = std::function<bool(const QString& subject, const QString& contactId)>; ///< false on failure

    /// `db` outlives the object.
    ContactPick(LocalDB& db, Link link, QObject* parent = nullptr);

    const QString& subject() const { return m_subject; }
    const QString& query() const { return m_query; }
    void setQuery(const QString& query);
    QString searchText() const { return u"Search contacts"_s; }
    const QList<ContactChoice>& people() const { return m_people; }
    QString emptyText() const { return u"Nobody with that name has written yet."_s; }
    const QString& errorText() const { return m_errorText; }

    Q_INVOKABLE void begin(const QString& subject);
    Q_INVOKABLE void choose(const QString& contactId); ///< closes, unless linking failed
    Q_INVOKABLE void cancel();

Q_SIGNALS:
    void changed();

private:
    void search();

    LocalDB& m_db;
    const Link m_link;
    QString m_subject;
    QString m_query;
    QList<ContactLink> m_contacts; ///< all contacts, while picking
    QList<ContactChoice> m_people;
    QString m_errorText;
};

}
