#include "Engines/MediaPlaces.h"

#include "Engines/EngineSpec.h"
#include "Foundation/Literals.h"
#include "Platform/AppPaths.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

namespace corvane {

namespace {

bool isVoiceNote(const QString& path)
{
    static const QRegularExpression name(u"\\A/corvane-voice-[0-9]+\\.m4a\\z"_s);
    const QString folder = QDir::tempPath();
    return path.startsWith(folder) && name.match(path.sliced(folder.size())).hasMatch();
}

/// The path to the folder itself may contain links, such as a home directory on another disk.
bool isPlainBelow(const QString& place, const QString& path)
{
    if (!path.startsWith(place + u'/'))
        return false;
    const QFileInfo file(path);
    if (!file.exists() && !file.isSymLink())
        return true;
    return file.isFile()
        && file.canonicalFilePath() == QFileInfo(place).canonicalFilePath() + path.sliced(place.size());
}

}

std::optional<QString> mediaFolder(const AppPaths& paths, const Account& account)
{
    if (!stateFolder(paths, account))
        return std::nullopt;
    return paths.applicationSupport + u"/media/"_s + account.slug;
}

QStringList mediaPlaces(const AppPaths& paths, const Account& account)
{
    const auto folder = mediaFolder(paths, account);
    return folder ? QStringList { *folder, *stateFolder(paths, account) } : QStringList();
}

bool isMediaPath(const QStringList& places, const QString& path)
{
    if (QDir::cleanPath(path) != path)
        return false;
    return (isVoiceNote(path) && isPlainBelow(QDir::tempPath(), path))
        || std::ranges::any_of(places, [&](const QString& place) { return isPlainBelow(place, path); });
}

}
