#include "AI/AIServices.h"
#include "AI/AskLumo.h"
#include "Desk/CorvaneMenuBarView.h"
#include "Engines/EngineManager.h"
#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Foundation/SystemScheduler.h"
#include "Platform/ApplicationId.h"
#include "Platform/Autostart.h"
#include "Platform/GlobalShortcuts.h"
#include "Platform/Linux/Decode/DecodeChild.h"
#include "Platform/Linux/Services.h"
#include "Platform/MediaDecoder.h"
#include "Platform/PrivateFile.h"
#include "Platform/SingleInstance.h"
#include "Platform/TerminationSignals.h"
#include "Platform/TextInsertion.h"
#include "Platform/Tray.h"
#include "Shell/CommandLine.h"
#include "Shell/CorvaneApp.h"
#include "Shell/Notices.h"
#include "Shell/Screens.h"
#include "Shell/StoreRecovery.h"
#include "UI/CaptureWindow.h"
#include "UI/DictationWindow.h"
#include "UI/MainWindow.h"
#include "UI/PanelWindow.h"

#include <QCommandLineParser>
#include <QFileInfo>
#include <QGuiApplication>
#include <algorithm>
#include <array>
#include <cstring>
#include <span>
#include <string_view>

using namespace corvane;

namespace {

enum class Mode { Window, Headless };

/// Read before Qt chooses its platform: what shows no window needs no display.
Mode requestedMode(int argc, char** argv)
{
    constexpr std::array<std::string_view, 5> withoutWindow { "--headless", "--help", "-h", "--version", "-v" };
    const std::span arguments(argv, size_t(argc));
    return std::ranges::find_first_of(arguments, withoutWindow) == arguments.end() ? Mode::Window : Mode::Headless;
}

/// What the running program is asked to do: one of these options, or what is named.
QStringList wishesOf(const QCommandLineParser& parser, const QStringList& options)
{
    const auto given = std::ranges::find_if(options, [&](const QString& option) { return parser.isSet(option); });
    return given == options.end() ? parser.positionalArguments() : QStringList { u"--"_s + *given };
}

StartFor purposeOf(Mode mode, const QStringList& wishes)
{
    if (mode == Mode::Headless)
        return StartFor::Headless;
    return CorvaneApp::isForRunning(wishes) ? StartFor::Command : StartFor::Window;
}

void logEvents(EngineManager& engine)
{
    QObject::connect(&engine, &EngineManager::eventHandled, &engine,
        [](const QString& account, const QString& type) { log(u"engine %1: %2"_s.arg(account, type)); });
}

}

int main(int argc, char** argv)
{
    logToStandardError();
    if (argc == 2 && std::strcmp(argv[1], "--decode") == 0)
        return runDecodeChild();
    if (const auto exitCode = runCommand(argc, argv))
        return *exitCode;
    const Mode mode = requestedMode(argc, argv);
    if (mode == Mode::Headless)
        qputenv("QT_QPA_PLATFORM", "offscreen");

    QGuiApplication application(argc, argv);
    QGuiApplication::setApplicationName(u"Corvane"_s);
    QGuiApplication::setApplicationVersion(QStringLiteral(CORVANE_VERSION));
    QGuiApplication::setDesktopFileName(applicationId);
    QGuiApplication::setQuitOnLastWindowClosed(false);

    QCommandLineParser parser;
    parser.setApplicationDescription(u"One private inbox for every channel.\n\n"_s + commandHelp());
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOption({ u"headless"_s, u"Run everything but the window."_s });
    const QString inBackground = u"background"_s;
    parser.addOption({ inBackground, u"Start without showing the window, as with the desktop."_s });
    parser.addOption(
        { u"start-all"_s, u"Start the engine of every account, not only those that start by themselves."_s });
    parser.addOption({ u"recover"_s,
        u"What takes the place of a damaged database that was moved aside: what can be saved of it, the "
        "latest backup, or an empty one."_s,
        u"save|backup|new"_s });
    const QString toggleDictation = u"toggle-dictation"_s;
    parser.addOption({ toggleDictation, u"Start dictation in the running program, or finish it, as its key does."_s });
    parser.addPositionalArgument(
        u"url"_s, u"A command, or a nimb-companion: URL that finishes a sign-in."_s, u"[url]"_s);
    parser.process(application);

    const AppPaths paths = AppPaths::fromEnvironment();
    const mode_t startingUmask = keepFilesPrivate({ paths.applicationSupport, QFileInfo(paths.defaultsFile).path() });
    const QStringList wishes = wishesOf(parser, { toggleDictation, inBackground });
    const auto instance = makeSingleInstance(paths, purposeOf(mode, wishes));
    if (!instance->claim(wishes))
        return 0;

    TerminationSignals terminationSignals;

    SystemScheduler scheduler;
    Machine machine = thisMachine(paths, scheduler, startingUmask);
    if (mode == Mode::Window) {
        machine.tray = makeTray();
        machine.autostart = makeAutostart(paths);
        machine.shortcuts = makeGlobalShortcuts();
        machine.insertion = makeTextInsertion(scheduler);
    }
    CorvaneApp app(paths, scheduler, std::move(machine));
    QObject::connect(&terminationSignals, &TerminationSignals::requested, &app, &CorvaneApp::quit);
    LumoQuestions questions(app.ai().ai);
    instance->setAnswerer([&questions](const QString& question, const auto& reply) { questions.ask(question, reply); });
    QObject::connect(&app, &CorvaneApp::ended, &application, &QCoreApplication::quit);
    QObject::connect(instance.get(), &SingleInstance::activated, &app, &CorvaneApp::open);
    QObject::connect(&application, &QCoreApplication::aboutToQuit, &app, &CorvaneApp::willTerminate);

    std::unique_ptr<Screens> screens;
    std::unique_ptr<MainWindow> window;
    std::unique_ptr<PanelWindow> panel;
    std::unique_ptr<CaptureWindow> capture;
    std::unique_ptr<DictationWindow> dictation;
    if (mode == Mode::Headless) {
        logEvents(app.engine());
        QObject::connect(&app, &CorvaneApp::quitRequested, &app, &CorvaneApp::quit);
        QObject::connect(instance.get(), &SingleInstance::replaced, &app, &CorvaneApp::quit);
        QObject::connect(&app, &CorvaneApp::windowRequested, &app, startWithWindow);
        app.onAppear();
    } else {
        screens = std::make_unique<Screens>(app);
        window = std::make_unique<MainWindow>(*screens, app.defaults(), app.decoder());
        QObject::connect(&app, &CorvaneApp::windowRequested, window.get(), &MainWindow::show);
        QObject::connect(window.get(), &MainWindow::appeared, &app, &CorvaneApp::onAppear);
        capture = std::make_unique<CaptureWindow>(window->engine(), app.capture());
        QObject::connect(window.get(), &MainWindow::firstFrame, capture.get(), [&capture] {
            log(u"MainWindow: first frame"_s);
            capture->prepare();
        });
        dictation = std::make_unique<DictationWindow>(window->engine(), app.dictation());
        panel = std::make_unique<PanelWindow>(window->engine(), *screens->panel, *screens->notices, scheduler);
        QObject::connect(&app, &CorvaneApp::panelRequested, panel.get(), &PanelWindow::toggle);
        QObject::connect(&app, &CorvaneApp::quitting, window.get(), &MainWindow::hide);
        QObject::connect(&app, &CorvaneApp::quitting, panel.get(), &PanelWindow::hide);
        QObject::connect(screens->panel.get(), &CorvaneMenuBarView::windowRequested, window.get(), &MainWindow::show);
        if (parser.isSet(inBackground))
            app.onAppear();
        else
            window->show();
    }
    if (parser.isSet(u"recover"_s))
        app.recovery().choose(parser.value(u"recover"_s));
    if (parser.isSet(u"start-all"_s))
        app.startAllEngines();
    if (!wishes.isEmpty())
        app.open(wishes);

    return QCoreApplication::exec();
}
