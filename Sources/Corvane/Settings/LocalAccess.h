#pragma once

#include "Foundation/Literals.h"

#include <QHash>
#include <QList>
#include <QObject>

namespace corvane {

class AccountStore;
class AddressBook;
class BackgroundQueue;
class CalendarStore;
class Desktop;
class UserDefaults;

/// A kind of local user data, and whether the program may read it.
class LocalAccessRow {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString detail MEMBER detail)
    Q_PROPERTY(bool connected MEMBER connected)
public:
    QString id; ///< "mail", "tasks", "contacts", "notes" or "messages"
    QString name;
    QString detail; ///< where it was found, or how much there is
    bool connected = false;

    bool operator==(const LocalAccessRow&) const = default;
};

/// The card "Local access": mail and messages are this program's own accounts; the rest is in folders, of which only
/// names and numbers are read before the user presses Connect.
class LocalAccess : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString label READ label CONSTANT)
    Q_PROPERTY(QString hint READ hint CONSTANT)
    Q_PROPERTY(QList<corvane::LocalAccessRow> rows READ rows NOTIFY changed)
public:
    /// All of it outlives the object.
    struct Surroundings {
        AccountStore& accounts;
        CalendarStore& calendar;
        const AddressBook& addressBook;
        BackgroundQueue& background;
        Desktop& desktop;
        UserDefaults& defaults;
        QString home;
    };

    explicit LocalAccess(Surroundings surroundings, QObject* parent = nullptr);

    static QString label() { return u"Local access"_s; }
    static QString hint() { return u"Mail · Tasks · Contacts · Notes · Messages — local, no cloud sign-in"_s; }
    QList<LocalAccessRow> rows() const;

    Q_INVOKABLE void refresh(); ///< counts the connected data again
    Q_INVOKABLE void connectTo(const QString& id);

Q_SIGNALS:
    void changed();
    void accountsAsked(); ///< opens the section where mail and messages are connected

private:
    LocalAccessRow accountsRow(const QString& id, const QString& name, bool mail) const;
    LocalAccessRow row(const QString& id, const QString& name, const QString& found, const QString& missing) const;
    bool isFound(const QString& id) const;
    bool isConnected(const QString& id) const;
    QStringList contactFolders() const;
    QString notesFolder() const; ///< empty if there is none
    void count(const QString& id);
    void chooseNotes();
    void tell(const QString& id, const QString& words);

    const Surroundings m_at;
    QHash<QString, QString> m_told; ///< by id: the amount, or the error
};

}
