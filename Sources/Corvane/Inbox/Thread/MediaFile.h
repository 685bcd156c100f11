#pragma once

#include <QString>

namespace corvane {

/// Why the file of a message is not handed to another program or to the player.
enum class MediaProblem {
    None,
    Missing,
    LinkOutside, ///< a symbolic link that leads out of the folder of media
    NotAFile, ///< a folder, a device, a pipe
    Program, ///< opening it would run it
    Empty,
    WrongType, ///< not the picture, sound or film that the message says
    CutShort,
};

/// Looks at the file itself. `kind` is "image", "audio", "video", "sticker", "document" or "media"; `mediaFolder`
/// is where engines are asked to put media, though a file may stand elsewhere.
MediaProblem checkMedia(const QString& path, const QString& kind, const QString& mediaFolder);

/// In the words of the screen; empty for none.
QString mediaProblemText(MediaProblem problem, const QString& kind);

}
