#pragma once

#include "Platform/AddressBook.h"

namespace corvane {

/// Folders of vCard files, as vdirsyncer and khard keep them: "{data home}/contacts/*/*.vcf", and the files in and
/// one level below each further folder. No such folder is there: no access.
class VCardAddressBook final : public AddressBook {
public:
    /// "~/" at the start of a further folder is `home`.
    VCardAddressBook(const QString& dataHome, const QString& home);

    bool requestAccess(const QStringList& folders) const override;
    QList<AddressBookPerson> people(const QStringList& folders) const override;

private:
    QStringList roots(const QStringList& folders) const; ///< those that are there

    QString m_dataHome;
    QString m_home;
};

}
