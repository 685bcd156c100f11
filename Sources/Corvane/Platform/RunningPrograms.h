#pragma once

#include "Foundation/Literals.h"

#include <QList>
#include <QString>

namespace corvane {

/// A program that the user is running.
struct RunningProgram {
    QString binary; ///< the file name of its executable, such as "zoom"
    QString desktopId; ///< of the desktop file that started it, such as "us.zoom.Zoom"; often empty

    bool operator==(const RunningProgram&) const = default;
};

/// Unordered, without duplicates. Takes some milliseconds, so call it from a background thread.
QList<RunningProgram> runningPrograms(const QString& procFolder = u"/proc"_s);

}
