#pragma once

#include <QString>

namespace corvane {

/// The title as a file name that every file system accepts, without a suffix.
QString fileNameOf(const QString& title);

/// An unused path in the user's downloads folder; `suffix` is without its dot.
QString freeDownload(const QString& title, const QString& suffix);

/// Saves into the downloads folder, without overwriting. Returns where it went, or the error.
QString saveDownload(const QString& title, const QString& suffix, const QByteArray& content);

QString savedTo(const QString& path); ///< as a sentence

}
