#pragma once

#include "Foundation/Scheduler.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>

namespace corvane {

// Short questions to the machine, for the check-up. Each waits some seconds at most, and may be asked on any thread.

/// What the session bus offers now, or would start when it is asked for.
struct DesktopServices {
    bool bus = false;
    bool keyring = false;
    bool notifications = false;
    bool trayHost = false;
    bool portal = false; ///< of files and shortcuts
};
DesktopServices desktopServices();

bool soundServerAnswers();

/// Whether somebody takes TCP connections there.
bool answersAt(const QString& host, int port, Milliseconds limit = Milliseconds(3000));

/// What a program prints within five seconds; nothing where it does not run or fails.
std::optional<QByteArray> programOutput(const QString& executable, const QStringList& arguments);

/// The path of the first of these programs that is installed; empty where none is.
QString firstInstalled(const QStringList& programs);

/// Whether the clock is set from the network; nothing where the machine does not say.
std::optional<bool> clockIsSynchronised();

/// Who may do what with a file or folder.
struct AccessFacts {
    bool exists = false;
    bool isOwn = false; ///< of this user
    bool isPrivate = false; ///< nobody else may read or write it
    bool isUsable = false; ///< this user may read and write it, and enter a folder
};
AccessFacts accessFacts(const QString& path);

/// Takes every right from others, and gives the user those that are needed. False where that fails.
bool makePrivate(const QString& path);

}
