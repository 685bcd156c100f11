#pragma once

#include "Rivals.h"

#include "Foundation/SystemScheduler.h"
#include "Platform/ProcessLauncher.h"
#include "Shell/CorvaneApp.h"
#include "Shell/Screens.h"
#include "UI/MainWindow.h"

#include <QGuiApplication>
#include <QTemporaryDir>

namespace corvane::bench {

/// To be called before the application object: without a display, windows are rendered in memory.
void withoutDisplay();

/// The whole program in its own folder, on the real clock, signed out and without engines.
struct PlayedProgram {
    /// Over a copy of the database, or an empty one; child processes are real unless a launcher simulates them.
    explicit PlayedProgram(const QString& database = {}, std::unique_ptr<ProcessLauncher> launcher = nullptr);

    QTemporaryDir folder;
    AppPaths paths;
    SystemScheduler scheduler;
    CorvaneApp app;
    Screens screens { app };
    MainWindow window { screens, app.defaults(), app.decoder() };
};

/// All of `main`. The contents of `bench` are destroyed before the application object, as windows require.
template <typename Bench> int runWithWindow(int argc, char** argv, std::unique_ptr<Bench>& bench)
{
    withoutDisplay();
    const QGuiApplication application(argc, argv);
    const int result = runAgainstRivals(argc, argv);
    bench.reset();
    return result;
}

}
