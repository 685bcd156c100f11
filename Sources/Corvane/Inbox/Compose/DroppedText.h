#pragma once

#include "Foundation/Result.h"

#include <QUrl>

/// What is let go over the composer: words, and files of this machine that hold words.
namespace corvane::DroppedText {

/// The texts of the files, with a blank line between; fails with words for the screen where one of them is no text,
/// is too long for a message, or cannot be read.
Result<QString> ofFiles(const QList<QUrl>& files);

}
