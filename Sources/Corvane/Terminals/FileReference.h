#pragma once

#include "Terminal/Pty/Pty.h"

#include <QString>
#include <optional>

class QRegularExpression;
class QUrl;

namespace corvane {

/// A place in a file, as compilers and tests name it.
struct FileReference {
    QString path; ///< absolute; the file was there
    int line = 0; ///< from 1; 0 for none
    int column = 0;

    bool operator==(const FileReference&) const = default;
};

/// What looks like "src/main.cpp:12:5" in a line of text.
const QRegularExpression& fileReferencePattern();

/// Such a text where there is a plain file of that name, counted from the folder; "~" is the home folder.
std::optional<FileReference> fileReference(const QString& text, const QString& directory, const QString& home);

/// What a "file:" address names on this computer, with its fragment as the line; none on another host.
std::optional<FileReference> fileOfAddress(const QUrl& address);

/// The person's editor at that place, in a terminal; `editor` as VISUAL and EDITOR hold it.
terminal::Command editorCommand(const QString& editor, const FileReference& place);

}
