#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

namespace corvane {

/// Somebody in the user's address book.
struct AddressBookPerson {
    QString givenName; ///< the whole name where the book does not tell its parts
    QString familyName;
    QString organisation;
    QStringList phones; ///< as written
    QByteArray photo; ///< an image file's bytes; empty where there is none

    bool operator==(const AddressBookPerson&) const = default;
};

/// The user's own address book. It is only read, never written. `folders` are those that the user named beside
/// the usual place.
class AddressBook {
public:
    virtual ~AddressBook() = default;

    /// Whether there is an address book that may be read; the answer comes at once.
    virtual bool requestAccess(const QStringList& folders) const = 0;

    /// Everybody. Slow, and safe on any thread; what cannot be read is left out.
    virtual QList<AddressBookPerson> people(const QStringList& folders) const = 0;
};

}
