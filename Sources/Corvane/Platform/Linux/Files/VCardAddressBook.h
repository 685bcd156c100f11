#pragma once

#include "Platform/AddressBook.h"

namespace corvane {

/// Folders of vCard files, as vdirsyncer and khard keep them: "{data home}/contacts/*/*.vcf", and the files in and one
/// level below each additional folder. There is no access if none of the folders exists.
class VCardAddressBook final : public AddressBook {
public:
    /// A leading "~/" of an additional folder is `home`.
    VCardAddressBook(const QString& dataHome, const QString& home);

    bool requestAccess(const QStringList& folders) const override;
    QList<AddressBookPerson> people(const QStringList& folders) const override;

private:
    QStringList roots(const QStringList& folders) const; ///< the existing ones

    QString m_dataHome;
    QString m_home;
};

}
