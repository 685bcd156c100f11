#pragma once

#include "Care/Doctor/Finding.h"
#include "Care/Doctor/Patient.h"

namespace corvane {

/// The result of a check: a sentence, and what to do about it.
struct CheckResult {
    Health health = Health::Good;
    QString words;
    QString advice {};
};

inline CheckResult good(const QString& words)
{
    return { Health::Good, words };
}

// Each check examines one thing, changes nothing, and may run on any thread. A fix says what it did, or nothing if it
// failed.

namespace checks {

// Of the profile: StoreChecks.cpp and ProfileChecks.cpp.
CheckResult database(const Patient& patient);
CheckResult schema(const Patient& patient);
CheckResult databaseSize(const Patient& patient);
CheckResult databaseLog(const Patient& patient);
CheckResult decisions(const Patient& patient);
CheckResult disk(const Patient& patient);
CheckResult folders(const Patient& patient);
CheckResult accounts(const Patient& patient);
CheckResult backups(const Patient& patient);

// Of the machine: MachineChecks.cpp.
CheckResult node(const Patient& patient);
CheckResult engines(const Patient& patient);
CheckResult toolServer(const Patient& patient);
CheckResult keyring(const Patient& patient);
CheckResult notifications(const Patient& patient);
CheckResult tray(const Patient& patient);
CheckResult portals(const Patient& patient);
CheckResult sound(const Patient& patient);
CheckResult speech(const Patient& patient);
CheckResult modelServer(const Patient& patient);
CheckResult codex(const Patient& patient);
CheckResult browser(const Patient& patient);
CheckResult calendars(const Patient& patient);
CheckResult contacts(const Patient& patient);
CheckResult mailServers(const Patient& patient);
CheckResult clock(const Patient& patient);

}

namespace fixes {

std::optional<QString> schema(const Patient& patient);
std::optional<QString> databaseSize(const Patient& patient); ///< blocks other writers while it runs
std::optional<QString> databaseLog(const Patient& patient);
std::optional<QString> folders(const Patient& patient);

}

}
