#pragma once

#include "Foundation/Result.h"

#include <QUrl>

/// Content dropped on the composer: text, or local text files.
namespace corvane::DroppedText {

/// The texts of the files, separated by a blank line; fails with an error for the user if a file is not text, is too
/// long for a message, or cannot be read.
Result<QString> ofFiles(const QList<QUrl>& files);

}
