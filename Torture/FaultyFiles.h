#pragma once

#include <QtGlobal>

namespace corvane::torture {

enum class Fault {
    PowerCut, ///< every use of a file fails from then on
    FullDisk, ///< every write fails until `mend`
};

/// The files of every SQLite connection that is opened while this object exists, on its thread: they fail at a chosen
/// operation (a write, a truncation, a sync), and after a power cut hold what a disk may hold then. No connection
/// outlives it, and there is one such object at a time.
class FaultyFiles {
public:
    FaultyFiles(Fault fault, qint64 failsAt); ///< counted from 1; 0 for never
    ~FaultyFiles();
    FaultyFiles(const FaultyFiles&) = delete;
    FaultyFiles& operator=(const FaultyFiles&) = delete;

    qint64 operations() const;
    bool hasFailed() const;
    void mend(); ///< everything works again

    /// After a power cut, with all connections closed: of what was not synced, some is lost, and some is torn.
    void losePower(quint32 seed);
};

}
