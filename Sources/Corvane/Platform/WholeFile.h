#pragma once

class QIODevice;

namespace corvane {

/// Whether a picture, sound or video is complete, as far as its format tells: PNG, JPEG, RIFF (WebP, WAV) and the
/// MPEG-4 family. Other formats count as complete, and so do files with very many parts. The device is open for reading
/// and seekable.
bool isWholeFile(QIODevice& file);

}
