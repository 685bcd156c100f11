#include "Care/Backup/ProfileFiles.h"

#include "Care/Backup/Manifest.h"
#include "Engines/AccountStore.h"
#include "Engines/EngineSpec.h"
#include "Foundation/Literals.h"
#include "Platform/AppPaths.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <algorithm>
#include <functional>

namespace corvane {

namespace {

/// Parts of the data folder that are stored otherwise, contain secrets, or can be recreated or downloaded again.
bool isLeftOut(const QString& name)
{
    static const QRegularExpression others(u"\\A("
                                           "nimblocal\\.db.*|instance\\.(lock|socket)|mcp-token|companion\\.jwt"
                                           "|(secrets|backups|Models|outbox/picked|BrowserQA/InteractiveProfile)/.*"
                                           ")\\z"_s,
        QRegularExpression::DotMatchesEverythingOption);
    return others.match(name).hasMatch();
}

void append(QList<ProfileFile>& files, const QString& folder, const QString& prefix,
    const std::function<bool(const QString& name)>& isWanted)
{
    QDirIterator each(
        folder, QDir::Files | QDir::Hidden | QDir::NoSymLinks | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (each.hasNext()) {
        const QString path = each.next();
        const QString name = path.sliced(folder.size() + 1);
        if (isWanted(name))
            files.append({ prefix + name, path });
    }
}

QList<Account> accountsOf(const AppPaths& paths)
{
    QFile file(paths.applicationSupport + u"/accounts.json"_s);
    return file.open(QIODevice::ReadOnly) ? decodeAccounts(file.readAll()).value_or(QList<Account>())
                                          : QList<Account>();
}

}

QList<ProfileFile> profileFiles(const AppPaths& paths, bool media, bool secrets)
{
    QList<ProfileFile> files;
    append(files, paths.applicationSupport, backupNames::data,
        [media](const QString& name) { return !isLeftOut(name) && (media || !name.startsWith("media/"_L1)); });
    if (QFileInfo(paths.defaultsFile).isFile())
        files.append({ backupNames::settings, paths.defaultsFile });
    if (secrets) {
        const QString session = paths.applicationSupport + u"/companion.jwt"_s;
        if (QFileInfo(session).isFile())
            files.append({ backupNames::session, session });
        for (const Account& account : accountsOf(paths)) {
            if (const auto folder = stateFolder(paths, account))
                append(files, *folder, backupNames::signIns + folder->sliced(paths.home.size() + 1) + u'/',
                    [](const QString&) { return true; });
        }
    }
    std::ranges::sort(files, {}, &ProfileFile::name);
    return files;
}

}
