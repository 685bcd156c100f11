#pragma once

#include <QtGlobal>

namespace corvane::torture {

enum class Fault {
    PowerCut, ///< every file operation fails from then on
    FullDisk, ///< every write fails until `mend`
};

/// Intercepts the files of every SQLite connection opened while this object exists, on its thread: they fail at a
/// chosen operation (a write, a truncation, a sync), and after a power cut contain what a disk might contain then. No
/// connection may outlive it, and only one such object may exist at a time.
class FaultyFiles {
public:
    FaultyFiles(Fault fault, qint64 failsAt); ///< counted from 1; 0 means never
    ~FaultyFiles();
    FaultyFiles(const FaultyFiles&) = delete;
    FaultyFiles& operator=(const FaultyFiles&) = delete;

    qint64 operations() const;
    bool hasFailed() const;
    void mend(); ///< stops failing

    /// After a power cut, with all connections closed: unsynced changes may be lost or torn.
    void losePower(quint32 seed);
};

}
