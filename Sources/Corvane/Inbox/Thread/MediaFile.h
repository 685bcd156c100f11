#pragma once

#include <QString>

namespace corvane {

/// Why the file of a message is not handed to another program or to the player.
enum class MediaProblem {
    None,
    Missing,
    Elsewhere, ///< not a plain file in the folders of its account: a link, a device, another place
    Program, ///< opening it would run it
    Empty,
    WrongType, ///< not the picture, sound or film that the message says
    CutShort,
};

/// Looks at the file itself. `kind` is "image", "audio", "video", "sticker", "document" or "media"; `places` are those
/// of its account.
MediaProblem checkMedia(const QString& path, const QString& kind, const QStringList& places);

/// In the words of the screen; empty for none.
QString describe(MediaProblem problem, const QString& kind);

}
