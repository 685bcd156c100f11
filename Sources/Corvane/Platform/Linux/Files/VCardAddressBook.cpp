#include "Platform/Linux/Files/VCardAddressBook.h"

#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Foundation/UserDefaults.h"
#include "Platform/AppPaths.h"
#include "Platform/Linux/Services.h"
#include "Platform/VCardReader.h"

#include <QDir>
#include <QFile>

namespace corvane {

namespace {

constexpr qint64 mostOfAFile = 64LL * 1024 * 1024;
constexpr qsizetype mostPeople = 100'000;
constexpr qsizetype mostPhotos = 64 * 1024 * 1024; ///< bytes of all photos together

QStringList vcardsIn(const QString& folder)
{
    QStringList paths;
    // Regular files only: opening a pipe would block.
    for (const QFileInfo& file : QDir(folder).entryInfoList({ u"*.vcf"_s }, QDir::Files, QDir::Name)) {
        if (file.isFile())
            paths.append(file.filePath());
    }
    return paths;
}

QStringList subfolders(const QString& folder)
{
    QStringList paths;
    for (const QFileInfo& entry : QDir(folder).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name))
        paths.append(entry.filePath());
    return paths;
}

void readFile(const QString& path, QList<AddressBookPerson>& people, qsizetype& photoBytes)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        log(u"VCardAddressBook: %1: %2"_s.arg(path, file.errorString()));
        return;
    }
    VCardReader reader(file);
    while (auto person = reader.next()) {
        photoBytes += person->photo.size();
        if (photoBytes > mostPhotos)
            person->photo.clear();
        people.append(*person);
        if (file.pos() > mostOfAFile || people.size() >= mostPeople) {
            log(u"VCardAddressBook: %1 is too large, its end is left out"_s.arg(path));
            return;
        }
    }
}

}

VCardAddressBook::VCardAddressBook(const QString& dataHome, const QString& home)
    : m_dataHome(dataHome)
    , m_home(home)
{
}

QStringList VCardAddressBook::roots(const QStringList& folders) const
{
    QStringList found { m_dataHome + u"/contacts"_s };
    for (const QString& folder : folders)
        found.append(folder.startsWith("~/"_L1) ? m_home + folder.mid(1) : folder);
    found.removeIf([](const QString& folder) { return folder.isEmpty() || !QFileInfo(folder).isDir(); });
    return found;
}

bool VCardAddressBook::requestAccess(const QStringList& folders) const
{
    return !roots(folders).isEmpty();
}

QList<AddressBookPerson> VCardAddressBook::people(const QStringList& folders) const
{
    QStringList files;
    for (const QString& root : roots(folders)) {
        files += vcardsIn(root);
        for (const QString& folder : subfolders(root))
            files += vcardsIn(folder);
    }
    QList<AddressBookPerson> people;
    qsizetype photoBytes = 0;
    for (const QString& file : std::as_const(files)) {
        if (people.size() < mostPeople)
            readFile(file, people, photoBytes);
    }
    return people;
}

QStringList addressBookFolders(const UserDefaults& defaults)
{
    return defaults.text(u"nimb.addressBookFolders"_s).value_or(QString()).split(u':', Qt::SkipEmptyParts);
}

std::unique_ptr<AddressBook> makeAddressBook(const AppPaths& paths)
{
    return std::make_unique<VCardAddressBook>(QFileInfo(paths.applicationSupport).path(), paths.home);
}

}
