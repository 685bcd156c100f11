#pragma once

#include "Foundation/Scheduler.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>

namespace corvane {

// Short questions to the machine, for the check-up. Each blocks for a few seconds at most and may run on any thread.

/// Services on the session bus that run or can be activated.
struct DesktopServices {
    bool bus = false;
    bool keyring = false;
    bool notifications = false;
    bool trayHost = false;
    bool portal = false; ///< of files and shortcuts
};
DesktopServices desktopServices();

bool soundServerAnswers();

/// Whether the port accepts TCP connections.
bool answersAt(const QString& host, int port, Milliseconds limit = Milliseconds(3000));

/// The standard output of a program; nothing if it fails or takes longer than five seconds.
std::optional<QByteArray> programOutput(const QString& executable, const QStringList& arguments);

/// The path of the first of these programs that is installed; empty if there is none.
QString firstInstalled(const QStringList& programs);

/// Whether the clock is set from the network; nothing if unknown.
std::optional<bool> clockIsSynchronised();

/// Permissions of a file or folder.
struct AccessFacts {
    bool exists = false;
    bool isOwn = false; ///< of this user
    bool isPrivate = false; ///< nobody else may read or write it
    bool isUsable = false; ///< this user may read and write it, and enter a folder
};
AccessFacts accessFacts(const QString& path);

/// Removes all permissions of others and grants those that the user needs. False on failure.
bool makePrivate(const QString& path);

}
