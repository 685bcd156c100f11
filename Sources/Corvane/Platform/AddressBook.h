#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

namespace corvane {

class UserDefaults;

/// The folders that the user configured in addition to the usual one: "nimb.addressBookFolders", separated by ":".
QStringList addressBookFolders(const UserDefaults& defaults);

/// A person in the user's address book.
struct AddressBookPerson {
    QString givenName; ///< the whole name if the book does not split it
    QString familyName;
    QString organisation;
    QStringList phones; ///< as written
    QByteArray photo; ///< the bytes of an image file; empty if there is none

    QStringList emails {}; ///< as written

    bool operator==(const AddressBookPerson&) const = default;
};

/// The user's address book. It is only read, never written. `folders` are those that the user added to the usual place.
class AddressBook {
public:
    virtual ~AddressBook() = default;

    /// Whether there is a readable address book; answers at once.
    virtual bool requestAccess(const QStringList& folders) const = 0;

    /// All people. Slow; may be called on any thread. Unreadable entries are skipped.
    virtual QList<AddressBookPerson> people(const QStringList& folders) const = 0;
};

}
