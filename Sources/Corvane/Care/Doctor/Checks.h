#pragma once

#include "Care/Doctor/Finding.h"
#include "Care/Doctor/Patient.h"

namespace corvane {

/// The result of a check: a sentence, and what to do about it.
struct Verdict {
    Health health = Health::Good;
    QString words;
    QString advice {};
};

inline Verdict good(const QString& words)
{
    return { Health::Good, words };
}

// Each check examines one thing, changes nothing, and may run on any thread. A fix says what it did, or nothing if it
// failed.

namespace checks {

// Of the profile: StoreChecks.cpp and ProfileChecks.cpp.
Verdict database(const Patient& patient);
Verdict schema(const Patient& patient);
Verdict databaseSize(const Patient& patient);
Verdict databaseLog(const Patient& patient);
Verdict decisions(const Patient& patient);
Verdict disk(const Patient& patient);
Verdict folders(const Patient& patient);
Verdict accounts(const Patient& patient);
Verdict backups(const Patient& patient);

// Of the machine: MachineChecks.cpp.
Verdict node(const Patient& patient);
Verdict engines(const Patient& patient);
Verdict toolServer(const Patient& patient);
Verdict keyring(const Patient& patient);
Verdict notifications(const Patient& patient);
Verdict tray(const Patient& patient);
Verdict portals(const Patient& patient);
Verdict sound(const Patient& patient);
Verdict speech(const Patient& patient);
Verdict modelServer(const Patient& patient);
Verdict codex(const Patient& patient);
Verdict browser(const Patient& patient);
Verdict calendars(const Patient& patient);
Verdict contacts(const Patient& patient);
Verdict mailServers(const Patient& patient);
Verdict clock(const Patient& patient);

}

namespace fixes {

std::optional<QString> schema(const Patient& patient);
std::optional<QString> databaseSize(const Patient& patient); ///< blocks other writers while it runs
std::optional<QString> databaseLog(const Patient& patient);
std::optional<QString> folders(const Patient& patient);

}

}
