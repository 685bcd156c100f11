#pragma once

class QIODevice;

namespace corvane {

/// Whether a picture, sound or film is all there, as far as its format tells: PNG, JPEG, RIFF (WebP, WAV) and the
/// MPEG-4 family. Other formats count as whole, and so does a file of more parts than are looked at. The device is
/// open for reading and can be moved about in.
bool isWholeFile(QIODevice& file);

}
