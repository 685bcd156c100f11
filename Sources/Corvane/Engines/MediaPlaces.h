#pragma once

#include <QStringList>

namespace corvane {

struct Account;
struct AppPaths;

/// The folder for the media of an account, which its engine finds in CORVANE_MEDIA_DIR; nothing where the slug is no
/// plain folder name.
std::optional<QString> mediaFolder(const AppPaths& paths, const Account& account);

/// Where files lie that the engine of an account may name: its folder of media and its state folder.
QStringList mediaPlaces(const AppPaths& paths, const Account& account);

/// Whether the path stands in one of the places, or is a voice note that was recorded here, and what lies there, if
/// anything does yet, is a plain file with no link on the way.
bool isMediaPath(const QStringList& places, const QString& path);

}
