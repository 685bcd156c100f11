#include "Hosted.h"

#include "Engine.h"

#include "Approvals/ApprovalRow.h"
#include "Approvals/ApprovalsStore.h"
#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Foundation/SystemScheduler.h"
#include "Platform/Linux/Services.h"
#include "Platform/PrivateFile.h"
#include "Platform/SingleInstance.h"
#include "Platform/TerminationSignals.h"
#include "Shell/CommandLine.h"
#include "Shell/CorvaneApp.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QProcessEnvironment>
#include <QSet>
#include <vector>

namespace corvane::torture {

const QString armedBook = u"armed"_s;
const QString undoneBook = u"undone"_s;

namespace {

constexpr auto decidesVariable = "CORVANE_TORTURE_DECIDES";
constexpr Milliseconds lookPeriod { 5 };
const QString textStart = u"Draft "_s;

/// Simulates the person at the window.
class Person {
public:
    Person(CorvaneApp& app, const QString& books)
        : m_app(app)
        , m_books(books)
    {
        const QStringList undone = m_books.lines(undoneBook);
        m_decided = QSet<QString>(undone.begin(), undone.end());
        m_looks = app.scheduler().every(lookPeriod, [this] { look(); });
    }

private:
    void look()
    {
        const QList<PendingDraft> drafts = m_app.approvals().drafts();
        for (const PendingDraft& draft : drafts) {
            if (draft.state() != DraftStatus::Pending || m_decided.contains(draft.id))
                continue;
            m_decided.insert(draft.id);
            m_app.approvals().decide(draftKey(draft.id), Verdict::Approve, Milliseconds(undoWindowMs));
            m_books.note(armedBook, draft.id);
            if (draft.body.sliced(textStart.size()).toInt() % 2 == 0)
                m_undos.push_back(
                    m_app.scheduler().after(Milliseconds(undoWindowMs / 2), [this, id = draft.id] { takeBack(id); }));
            return; // one at a time, so that a kill hits drafts in each state
        }
    }

    void takeBack(const QString& id)
    {
        if (!m_app.approvals().armed(draftKey(id)))
            return;
        m_app.approvals().undo(draftKey(id));
        m_books.note(undoneBook, id);
    }

    CorvaneApp& m_app;
    EngineBooks m_books;
    QSet<QString> m_decided;
    std::unique_ptr<Timer> m_looks;
    std::vector<std::unique_ptr<Timer>> m_undos;
};

}

QString draftText(int number)
{
    return textStart + QString::number(number);
}

void decideOnDrafts(QProcessEnvironment& environment, const QString& books)
{
    environment.insert(QString::fromLatin1(decidesVariable), books);
}

int runHosted(const QStringList& arguments)
{
    std::vector<QByteArray> words { "corvane" };
    for (const QString& argument : arguments)
        words.push_back(argument.toLocal8Bit());
    std::vector<char*> argv;
    for (QByteArray& word : words)
        argv.push_back(word.data());
    int argc = int(argv.size());
    argv.push_back(nullptr);

    logToStandardError();
    if (const auto exitCode = runCommand(argc, argv.data()))
        return *exitCode;
    const QCoreApplication application(argc, argv.data());
    const AppPaths paths = AppPaths::fromEnvironment();
    const mode_t startingUmask = keepFilesPrivate({ paths.applicationSupport, QFileInfo(paths.defaultsFile).path() });
    const auto instance = makeSingleInstance(paths, StartFor::Headless);
    if (!instance->claim({}))
        return 1;
    const TerminationSignals terminationSignals;
    SystemScheduler scheduler;
    CorvaneApp app(paths, scheduler, thisMachine(paths, scheduler, startingUmask));
    QObject::connect(&terminationSignals, &TerminationSignals::requested, &app, &CorvaneApp::quit);
    QObject::connect(&app, &CorvaneApp::ended, &application, &QCoreApplication::quit);
    QObject::connect(&application, &QCoreApplication::aboutToQuit, &app, &CorvaneApp::willTerminate);
    app.onAppear();
    std::optional<Person> person;
    if (qEnvironmentVariableIsSet(decidesVariable))
        person.emplace(app, qEnvironmentVariable(decidesVariable));
    return QCoreApplication::exec();
}

}
