#pragma once

#include "Foundation/Literals.h"

#include <QList>
#include <QString>

namespace corvane {

/// A program that the user runs.
struct RunningProgram {
    QString binary; ///< the file name of its program, such as "zoom"
    QString desktopId; ///< of the desktop file that started it, such as "us.zoom.Zoom"; mostly empty

    bool operator==(const RunningProgram&) const = default;
};

/// Each once, in no order. Some milliseconds of reading, so away from the main thread.
QList<RunningProgram> runningPrograms(const QString& procFolder = u"/proc"_s);

}
