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

/// What a backup contains besides the database: the settings, and everything below the data folder that this machine
/// cannot create or download again. `secrets` adds the sign-ins of the web account and of the engines. Regular files
/// only; links are neither followed nor stored.
QList<ProfileFile> profileFiles(const AppPaths& paths, bool media, bool secrets);

}
