#pragma once

#include <QStringList>

namespace corvane {

struct Account;
struct AppPaths;

/// The media folder of an account, passed to its engine as CORVANE_MEDIA_DIR; nothing if the slug is not a plain folder
/// name.
std::optional<QString> mediaFolder(const AppPaths& paths, const Account& account);

/// Where the files of an account's engine may be: its media folder and its state folder.
QStringList mediaPlaces(const AppPaths& paths, const Account& account);

/// Whether the path is in one of these folders, or is a voice note recorded here, and is a regular file without
/// symbolic links on the way, if it exists.
bool isMediaPath(const QStringList& places, const QString& path);

}
