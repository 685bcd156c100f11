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

/// To be called before the application object: where there is no display the windows are drawn in memory.
void withoutDisplay();

/// The whole program in a folder of its own, on the real clock, with nobody signed in and no engine running yet.
struct PlayedProgram {
    /// Over a copy of the database, or over an empty one; its children are real where no launcher plays them.
    explicit PlayedProgram(const QString& database = {}, std::unique_ptr<ProcessLauncher> launcher = nullptr);

    QTemporaryDir folder;
    AppPaths paths;
    SystemScheduler scheduler;
    CorvaneApp app;
    Screens screens { app };
    MainWindow window { screens, app.defaults(), app.decoder() };
};

/// The whole of `main`. What `bench` holds goes before the application object, as windows must.
template <typename Bench> int runWithWindow(int argc, char** argv, std::unique_ptr<Bench>& bench)
{
    withoutDisplay();
    const QGuiApplication application(argc, argv);
    const int result = runAgainstRivals(argc, argv);
    bench.reset();
    return result;
}

}
