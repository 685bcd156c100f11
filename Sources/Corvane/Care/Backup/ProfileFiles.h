#pragma once

#include "Foundation/Result.h"

#include <QList>
#include <QString>

namespace corvane {

struct AppPaths;

/// A file of the profile and its name in a backup.
struct ProfileFile {
    QString name;
    QString path;
};

/// What a backup holds beside the database: everything below the data folder but what this machine makes or fetches
/// anew, and the settings. `secrets` adds the sign-ins of the web account and of the engines. Plain files only; links
/// are neither followed nor kept.
QList<ProfileFile> profileFiles(const AppPaths& paths, bool media, bool secrets);

}
