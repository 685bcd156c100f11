#pragma once

#include "Platform/MediaDecoder.h"

class QFile;

namespace corvane {

/// Loads what reading pictures needs, since nothing can be loaded in the sandbox.
void loadPictureFormats();

std::expected<Pixels, DecodeFailure> readPicture(QFile& file, PictureBox box);

}
