#pragma once

#include <QStringList>

namespace corvane {

/// The processes of this machine, for a line such as "2 local claude processes". Waits for `ps`.
struct DevProcessInspector {
    static QStringList snapshot(); ///< one line each: number, name, command line; empty where that failed
    static int count(const QString& matching); ///< lines that contain it, in any case
};

}
