#pragma once

#include "Care/Doctor/CheckedProfile.h"
#include "Care/Doctor/Finding.h"

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
CheckResult database(const CheckedProfile& profile);
CheckResult schema(const CheckedProfile& profile);
CheckResult databaseSize(const CheckedProfile& profile);
CheckResult databaseLog(const CheckedProfile& profile);
CheckResult decisions(const CheckedProfile& profile);
CheckResult disk(const CheckedProfile& profile);
CheckResult folders(const CheckedProfile& profile);
CheckResult accounts(const CheckedProfile& profile);
CheckResult backups(const CheckedProfile& profile);

// Of the machine: MachineChecks.cpp.
CheckResult node(const CheckedProfile& profile);
CheckResult engines(const CheckedProfile& profile);
CheckResult toolServer(const CheckedProfile& profile);
CheckResult keyring(const CheckedProfile& profile);
CheckResult notifications(const CheckedProfile& profile);
CheckResult tray(const CheckedProfile& profile);
CheckResult portals(const CheckedProfile& profile);
CheckResult sound(const CheckedProfile& profile);
CheckResult speech(const CheckedProfile& profile);
CheckResult modelServer(const CheckedProfile& profile);
CheckResult codex(const CheckedProfile& profile);
CheckResult browser(const CheckedProfile& profile);
CheckResult calendars(const CheckedProfile& profile);
CheckResult contacts(const CheckedProfile& profile);
CheckResult mailServers(const CheckedProfile& profile);
CheckResult clock(const CheckedProfile& profile);

}

namespace fixes {

std::optional<QString> schema(const CheckedProfile& profile);
std::optional<QString> databaseSize(const CheckedProfile& profile); ///< blocks other writers while it runs
std::optional<QString> databaseLog(const CheckedProfile& profile);
std::optional<QString> folders(const CheckedProfile& profile);

}

}
