#pragma once

#include "Platform/MediaDecoder.h"

class QFile;

namespace corvane {

/// Loads the image plugins, since nothing can be loaded inside the sandbox.
void loadPictureFormats();

std::expected<Pixels, DecodeFailure> readPicture(QFile& file, PictureBox box);

}
