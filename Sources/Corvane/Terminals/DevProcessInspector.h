#pragma once

#include <QStringList>

namespace corvane {

/// Counts processes of this machine, for a line such as "2 local claude processes". Waits for `ps`.
struct DevProcessInspector {
    static QStringList snapshot(); ///< one line each: number, name, command line; empty on failure
    static int count(const QString& matching); ///< lines that contain it, ignoring case
    static int count(const QStringList& snapshot, const QString& matching);
};

}
