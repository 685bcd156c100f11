#pragma once

#include <QString>

namespace corvane {

/// Why a message's file is not opened or played.
enum class MediaProblem {
    None,
    Missing,
    Elsewhere, ///< not a regular file in its account's folders: a link, a device, another place
    Program, ///< opening it would execute it
    Empty,
    WrongType, ///< not the type of media that the message claims
    CutShort,
};

/// Checks the file itself. `kind` is "image", "audio", "video", "sticker", "document" or "media"; `places` are its
/// account's folders.
MediaProblem checkMedia(const QString& path, const QString& kind, const QStringList& places);

/// For the user; empty for none.
QString describe(MediaProblem problem, const QString& kind);

}
