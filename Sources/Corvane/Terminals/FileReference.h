#pragma once

#include "Terminal/Pty/Pty.h"

#include <QString>
#include <optional>

class QRegularExpression;
class QUrl;

namespace corvane {

/// A position in a file, as compilers and tests print it.
struct FileReference {
    QString path; ///< absolute; the file existed
    int line = 0; ///< 1-based; 0 for none
    int column = 0;

    bool operator==(const FileReference&) const = default;
};

/// The parts of a line that look like "src/main.cpp:12:5".
const QRegularExpression& fileReferencePattern();

/// Resolves such a text if it names a regular file, relative to the folder; "~" is the home folder.
std::optional<FileReference> fileReference(const QString& text, const QString& directory, const QString& home);

/// The file of a "file:" address, with its fragment as the line; nothing for another host.
std::optional<FileReference> fileOfAddress(const QUrl& address);

/// Opens the user's editor at that position, in a terminal; `editor` is the value of VISUAL or EDITOR.
terminal::Command editorCommand(const QString& editor, const FileReference& place);

}
