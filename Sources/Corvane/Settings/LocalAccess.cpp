#include "Settings/LocalAccess.h"

#include "Calendar/CalendarStore.h"
#include "Engines/AccountStore.h"
#include "Foundation/BackgroundQueue.h"
#include "Foundation/Literals.h"
#include "Foundation/UserDefaults.h"
#include "Platform/AddressBook.h"
#include "Platform/Desktop.h"

#include <QDirIterator>
#include <QFileInfo>
#include <QPointer>
#include <algorithm>

namespace corvane {

namespace {

const QString connectedKey = u"nimb.localAccess"_s;
const QString notesKey = u"nimb.notesFolder"_s;
constexpr int mostNotes = 100'000;

QString counted(int count, const QString& one, const QString& many)
{
    return count == 1 ? u"1 "_s + one : u"%1 %2"_s.arg(count).arg(many);
}

int markdownFiles(const QString& folder)
{
    int count = 0;
    QDirIterator files(
        folder, { u"*.md"_s, u"*.markdown"_s }, QDir::Files | QDir::Readable, QDirIterator::Subdirectories);
    for (; files.hasNext() && count < mostNotes; ++count)
        files.next();
    return count;
}

}

LocalAccess::LocalAccess(Surroundings surroundings, QObject* parent)
    : QObject(parent)
    , m_at(std::move(surroundings))
{
    connect(&m_at.accounts, &AccountStore::accountsChanged, this, &LocalAccess::changed);
    connect(&m_at.calendar, &CalendarStore::changed, this, &LocalAccess::changed);
}

bool LocalAccess::isConnected(const QString& id) const
{
    return m_at.defaults.text(connectedKey).value_or(QString()).split(u',').contains(id);
}

LocalAccessRow LocalAccess::accountsRow(const QString& id, const QString& name, bool mail) const
{
    const auto count = int(std::ranges::count_if(m_at.accounts.accounts(),
        [mail](const Account& account) { return (account.channel() == Channel::Email) == mail; }));
    return { id, name,
        count == 0 ? u"No account of this program yet"_s
                   : counted(count, u"account of this program"_s, u"accounts of this program"_s),
        count > 0 };
}

LocalAccessRow LocalAccess::row(
    const QString& id, const QString& name, const QString& found, const QString& missing) const
{
    const bool isThere = isFound(id);
    const QString told = m_told.value(id);
    return { id, name,
        !told.isEmpty() ? told
            : isThere   ? u"Found in "_s + found
                        : u"Not found: "_s + missing,
        isThere && isConnected(id) };
}

bool LocalAccess::isFound(const QString& id) const
{
    if (id == u"tasks")
        return m_at.calendar.surroundings().source.access(m_at.calendar.places()) == CalendarAccess::Full;
    return id == u"contacts" ? m_at.addressBook.requestAccess(contactFolders()) : !notesFolder().isEmpty();
}

QStringList LocalAccess::contactFolders() const
{
    return addressBookFolders(m_at.defaults);
}

/// The chosen one, else one with a common name.
QString LocalAccess::notesFolder() const
{
    QStringList places { m_at.home + u"/Notes"_s, m_at.home + u"/notes"_s, m_at.home + u"/Documents/Notes"_s,
        m_at.home + u"/Documents/notes"_s };
    if (const auto chosen = m_at.defaults.text(notesKey))
        places.prepend(*chosen);
    const auto found = std::ranges::find_if(places, [](const QString& place) { return QFileInfo(place).isDir(); });
    return found == places.end() ? QString() : *found;
}

QList<LocalAccessRow> LocalAccess::rows() const
{
    return { accountsRow(u"mail"_s, u"Mail"_s, true),
        row(u"tasks"_s, u"Tasks"_s,
            m_at.calendar.places().service ? u"the calendar folders and Evolution"_s : u"the calendar folders"_s,
            u"there is no calendar folder"_s),
        row(u"contacts"_s, u"Contacts"_s, u"the address book folders"_s,
            u"there is no folder of contacts, such as ~/.local/share/contacts"_s),
        row(u"notes"_s, u"Notes"_s, QString(notesFolder()).replace(m_at.home, u"~"_s),
            u"choose a folder of Markdown files"_s),
        accountsRow(u"messages"_s, u"Messages"_s, false) };
}

void LocalAccess::refresh()
{
    for (const QString& id : { u"tasks"_s, u"contacts"_s, u"notes"_s }) {
        if (isConnected(id))
            count(id);
    }
    Q_EMIT changed();
}

void LocalAccess::connectTo(const QString& id)
{
    if (id == u"mail" || id == u"messages")
        Q_EMIT accountsAsked();
    else if (id == u"notes" && !isFound(id))
        chooseNotes();
    else
        count(id);
}

void LocalAccess::chooseNotes()
{
    m_at.desktop.chooseFolder(u"Folder of notes"_s, this, [this](const Result<QList<QUrl>>& chosen) {
        if (!chosen)
            return tell(u"notes"_s, u"This desktop has no window to choose a folder in. Keep notes in ~/Notes."_s);
        if (chosen->isEmpty())
            return;
        m_at.defaults.setText(notesKey, chosen->first().toLocalFile());
        count(u"notes"_s);
    });
}

/// Reading proves access; missing parts are reported.
void LocalAccess::count(const QString& id)
{
    if (!isFound(id))
        return tell(id, {});
    std::function<QString()> work;
    if (id == u"tasks")
        work = [&source = m_at.calendar.surroundings().source, places = m_at.calendar.places()] {
            return counted(source.openTasks(places), u"open task"_s, u"open tasks"_s);
        };
    else if (id == u"contacts")
        work = [&book = m_at.addressBook, folders = contactFolders()] {
            return counted(int(book.people(folders).size()), u"person"_s, u"people"_s);
        };
    else
        work = [folder = notesFolder(), home = m_at.home] {
            return counted(markdownFiles(folder), u"note"_s, u"notes"_s) + u" in "_s
                + QString(folder).replace(home, u"~"_s);
        };
    m_at.background.run<QString>(work, [self = QPointer(this), id](const QString& words) {
        if (!self)
            return;
        QStringList connected
            = self->m_at.defaults.text(connectedKey).value_or(QString()).split(u',', Qt::SkipEmptyParts);
        if (!connected.contains(id))
            self->m_at.defaults.setText(connectedKey, (connected << id).join(u','));
        self->tell(id, words);
    });
}

void LocalAccess::tell(const QString& id, const QString& words)
{
    m_told.insert(id, words);
    Q_EMIT changed();
}

}
