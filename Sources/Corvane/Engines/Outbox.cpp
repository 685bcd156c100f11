#include "Engines/Outbox.h"

#include "Foundation/Ids.h"
#include "Foundation/Literals.h"
#include "Platform/AppPaths.h"
#include "Platform/PrivateFile.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <algorithm>

namespace corvane {

namespace {

constexpr qsizetype longestName = 200; // bytes; file systems allow 255

/// The name made safe: a regular, visible file name.
QString plainName(const QString& name)
{
    QString plain = name;
    std::ranges::replace_if(
        plain, [](QChar unit) { return unit == u'/' || (!unit.isPrint() && !unit.isSurrogate()); }, u'_');
    plain = plain.trimmed();
    while (plain.startsWith(u'.'))
        plain.remove(0, 1);
    const QString ending = QFileInfo(plain).suffix().left(20);
    while (plain.toUtf8().size() > longestName)
        plain = plain.chopped(ending.size() + 2) + u'.' + ending;
    return plain.isEmpty() ? u"file"_s : plain;
}

QString newPath(const QString& place, const QString& name)
{
    return place + u'/' + uuidText() + u'/' + name;
}

/// Files in the outbox are direct children of its folders.
bool liesBelow(const QString& place, const QString& path)
{
    return QDir::cleanPath(path) == path && QFileInfo(QFileInfo(path).path()).path() == place;
}

void removeFolderOf(const QString& path)
{
    QDir(QFileInfo(path).path()).removeRecursively();
}

QStringList foldersIn(const QString& place)
{
    return QDir(place).entryList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot);
}

void removeAllBut(const QString& place, const QList<OutgoingFile>& files)
{
    QSet<QString> kept;
    for (const OutgoingFile& file : files)
        kept.insert(QFileInfo(file.path).path());
    for (const QString& name : foldersIn(place)) {
        if (const QString folder = place + u'/' + name; !kept.contains(folder))
            QDir(folder).removeRecursively();
    }
}

QString hashText(const QCryptographicHash& hash)
{
    return QString::fromLatin1(hash.result().toHex());
}

}

Outbox::Outbox(const AppPaths& paths)
    : m_picked(paths.applicationSupport + u"/outbox/picked"_s)
    , m_drafts(paths.applicationSupport + u"/outbox/drafts"_s)
{
}

Result<OutgoingFile> Outbox::copy(const QString& from, const QString& place, qint64 limit) const
{
    const QString name = plainName(QFileInfo(from).fileName());
    OutgoingFile file { newPath(place, name), name, 0, {} };
    QCryptographicHash hash(QCryptographicHash::Sha256);
    const auto size = copyPrivateFile(from, file.path, limit, [&](QByteArrayView piece) { hash.addData(piece); });
    if (!size) {
        removeFolderOf(file.path);
        return failure(u"%1 can't be attached. %2"_s.arg(name, size.error().message));
    }
    file.bytes = *size;
    file.sha256 = hashText(hash);
    return file;
}

Result<OutgoingFile> Outbox::pick(const QString& path, qint64 limit) const
{
    return copy(path, m_picked, limit);
}

Result<OutgoingFile> Outbox::pick(const QString& name, const QByteArray& content) const
{
    const QString plain = plainName(name);
    OutgoingFile file { newPath(m_picked, plain), plain, content.size(), {} };
    if (!writePrivateFile(file.path, content)) {
        removeFolderOf(file.path);
        return failure(u"%1 can't be attached. It couldn't be copied."_s.arg(plain));
    }
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(content);
    file.sha256 = hashText(hash);
    return file;
}

void Outbox::drop(const QList<OutgoingFile>& files) const
{
    for (const OutgoingFile& file : files) {
        if (liesBelow(m_picked, file.path))
            removeFolderOf(file.path);
    }
}

void Outbox::keepPicked(const QList<OutgoingFile>& files) const
{
    removeAllBut(m_picked, files);
}

std::optional<QList<OutgoingFile>> Outbox::copyForDraft(const QList<OutgoingFile>& files) const
{
    QList<OutgoingFile> copies;
    for (const OutgoingFile& file : files) {
        auto copied = liesBelow(m_picked, file.path) ? copy(file.path, m_drafts, file.bytes) : failure({});
        if (!copied || copied->sha256 != file.sha256)
            return std::nullopt; // the next cleanup deletes the copies
        copied->name = file.name;
        copies.append(*copied);
    }
    return copies;
}

void Outbox::keepForDrafts(const QList<OutgoingFile>& files) const
{
    removeAllBut(m_drafts, files);
}

bool Outbox::holdsForDrafts() const
{
    return !foldersIn(m_drafts).isEmpty();
}

bool Outbox::holds(const OutgoingFile& file) const
{
    const bool isHere = liesBelow(m_picked, file.path) || liesBelow(m_drafts, file.path);
    return isHere && QFileInfo(file.path).isFile() && !QFileInfo(file.path).isSymLink();
}

QList<OutgoingFile> Outbox::asTheyLie(QList<OutgoingFile> files) const
{
    for (OutgoingFile& each : files) {
        QFile file(each.path);
        QCryptographicHash hash(QCryptographicHash::Sha256);
        const bool isRead = holds(each) && file.open(QIODevice::ReadOnly) && hash.addData(&file);
        each.bytes = isRead ? file.size() : -1;
        each.sha256 = isRead ? hashText(hash) : QString();
    }
    return files;
}

}
