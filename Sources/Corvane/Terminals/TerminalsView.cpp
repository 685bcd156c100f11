#include "Terminals/TerminalsView.h"

#include "Foundation/Literals.h"
#include "Platform/Desktop.h"
#include "Terminals/ShellCommand.h"

#include <QFileInfo>
#include <QUrl>
#include <algorithm>

namespace corvane {

namespace {

constexpr Milliseconds shortestSession { 2000 };
constexpr Milliseconds pauseOfNotifications { 2000 };
constexpr qsizetype largestPaste = 1'000'000;

/// What fills a bar: all of it where the program does not say how far it is.
qreal shareOf(const TerminalRequests::Progress& progress)
{
    constexpr int all = 100;
    switch (progress.state) {
    case terminal::ProgressState::None:
        return 0;
    case terminal::ProgressState::Indeterminate:
        return 1;
    default:
        return qreal(std::max(1, progress.percent)) / all;
    }
}

}

TerminalsView::TerminalsView(Surroundings at, QObject* parent)
    : QObject(parent)
    , m_at(std::move(at))
    , m_fontSize(m_at.defaults)
{
    connect(&m_question, &TerminalQuestion::closeConfirmed, this,
        [this](LumoTerminalSession* session) { closeNow(*session); });
    connect(&m_question, &TerminalQuestion::pasteConfirmed, this,
        [this](LumoTerminalSession* session, const QString& text) {
            if (session->isRunning())
                pasteNow(*session, text.toStdString());
        });
}

TerminalsView::~TerminalsView() = default;

QString TerminalsView::titleFor(const QString& label, const TerminalPlace& place) const
{
    const QString name = label.toLower().replace(u' ', u'-');
    const auto ofProject = std::ranges::count(m_sessions, place.projectId, &LumoTerminalSession::projectId);
    return u"%1-%2-%3"_s.arg(place.projectSlug, name, QString::number(ofProject + 1));
}

LumoTerminalSession& TerminalsView::createLocalSession(
    const QString& label, const QString& command, const TerminalPlace& place)
{
    const QString wanted = place.directory.isEmpty() && m_current ? m_current->currentDirectory() : place.directory;
    return add({ .title = titleFor(label, place),
        .projectId = place.projectId,
        .projectSlug = place.projectSlug,
        .initialCommand = command,
        .command = shellCommand(resolvedDirectory(wanted, m_at.home), m_at.umask) });
}

LumoTerminalSession& TerminalsView::createLocalSession(const QString& label, terminal::Command command)
{
    return add({ .title = titleFor(label), .command = std::move(command) });
}

LumoTerminalSession& TerminalsView::add(LumoTerminalSession::Options options)
{
    const auto at = std::ranges::find(m_sessions, m_current, &std::unique_ptr<LumoTerminalSession>::get);
    const auto place = at == m_sessions.end() ? at : at + 1;
    LumoTerminalSession& session = **m_sessions.insert(
        place, std::make_unique<LumoTerminalSession>(std::move(options), m_at.scheduler, m_at.decoder));
    connect(&session, &LumoTerminalSession::labelChanged, this, &TerminalsView::refresh);
    connect(&session, &LumoTerminalSession::ended, this, [this, &session] { sessionEnded(session); });
    connect(&session, &LumoTerminalSession::notified, this, [this](const QString& title, const QString& body) {
        const qint64 now = m_at.scheduler.monotonicMs();
        if (m_notifiedAt && now - *m_notifiedAt < pauseOfNotifications.count())
            return;
        m_notifiedAt = now;
        Q_EMIT notified(title, body);
    });
    connect(&session, &LumoTerminalSession::clipboardRequested, this,
        [this, &session](const QString& text) { m_question.askForClipboard(session, text); });
    select(session.id());
    return session;
}

void TerminalsView::create()
{
    TerminalPlace place = m_place;
    if (m_current && m_current->projectId() == place.projectId)
        place.directory.clear();
    createLocalSession(u"shell"_s, {}, place);
}

LumoTerminalSession* TerminalsView::find(const QString& id) const
{
    const auto found = std::ranges::find(m_sessions, id, &LumoTerminalSession::id);
    return found == m_sessions.end() ? nullptr : found->get();
}

void TerminalsView::select(const QString& id)
{
    if (LumoTerminalSession* const session = find(id)) {
        m_current = session;
        session->clearAttention();
        refresh();
    }
}

void TerminalsView::step(int by)
{
    if (m_sessions.empty())
        return;
    const auto count = qsizetype(m_sessions.size());
    const auto at = std::ranges::find(m_sessions, m_current, &std::unique_ptr<LumoTerminalSession>::get);
    select(m_sessions[size_t((at - m_sessions.begin() + by + count) % count)]->id());
}

void TerminalsView::close(const QString& id)
{
    LumoTerminalSession* const session = find(id);
    if (!session)
        return;
    const QString program = session->runningCommand();
    if (program.isEmpty())
        return closeNow(*session);
    select(id);
    m_question.askToClose(*session, program);
}

void TerminalsView::closeCurrent()
{
    if (m_current)
        close(m_current->id());
}

void TerminalsView::closeNow(LumoTerminalSession& session)
{
    const auto at = std::ranges::find(m_sessions, &session, &std::unique_ptr<LumoTerminalSession>::get);
    // It may be the sender of the current signal.
    LumoTerminalSession* const gone = at->release();
    const auto next = m_sessions.erase(at);
    if (m_current == gone)
        m_current = m_sessions.empty() ? nullptr : (next == m_sessions.end() ? m_sessions.back() : *next).get();
    m_question.withdraw(*gone);
    refresh();
    gone->disconnect(this);
    gone->terminate();
    gone->deleteLater();
}

/// Typing "exit" closes the tab, whatever the exit code. Other ends keep the tab, so that its output can be read.
void TerminalsView::sessionEnded(LumoTerminalSession& session)
{
    const terminal::ExitStatus status = session.exitStatus().value_or(terminal::ExitStatus {});
    const bool atOnce = m_at.scheduler.nowMs() - session.startedAt() < shortestSession.count();
    if (session.failedToStart() || status.bySignal || (atOnce && status.code != 0))
        return refresh();
    closeNow(session);
}

void TerminalsView::restart()
{
    if (!m_current || !m_current->exitStatus())
        return;
    LumoTerminalSession& old = *m_current;
    createLocalSession(u"shell"_s);
    closeNow(old);
}

void TerminalsView::rename(const QString& id, const QString& name)
{
    if (LumoTerminalSession* const session = find(id))
        session->rename(name);
}

void TerminalsView::paste(const QString& text)
{
    if (!m_current || !m_current->isRunning() || text.isEmpty())
        return;
    const std::string bytes = text.toStdString();
    if (qsizetype(bytes.size()) > largestPaste)
        return m_question.tell(*m_current, u"The clipboard holds more than 1 MB, too much to paste into a terminal."_s);
    const bool bracketed = m_current->terminal()->terminal()->has(terminal::Mode::BracketedPaste);
    if (bracketed || !(text.contains(u'\n') || text.contains(u'\r')))
        return pasteNow(*m_current, bytes);
    m_question.askToPaste(*m_current, text);
}

void TerminalsView::pasteNow(LumoTerminalSession& session, const std::string& bytes)
{
    if (session.terminal()->hasRoomFor(bytes.size()))
        session.terminal()->terminal()->paste(bytes);
    else
        m_question.tell(session, u"The program in the terminal has not read what came before. Nothing was pasted."_s);
}

QString TerminalsView::endedText() const
{
    if (!m_current || !m_current->exitStatus())
        return {};
    const terminal::ExitStatus status = *m_current->exitStatus();
    if (m_current->failedToStart())
        return u"The shell could not be started."_s;
    return status.bySignal ? u"The shell was ended by signal %1."_s.arg(status.code)
                           : u"The shell ended with exit code %1."_s.arg(status.code);
}

QString TerminalsView::emptyDetail() const
{
    return u"A terminal runs your shell on this computer. Ten at once are fine, and they go on while you are "
           "elsewhere in Corvane."_s;
}

void TerminalsView::openLink(const QString& address)
{
    const QUrl url(address);
    const auto file = url.isLocalFile()
        ? fileOfAddress(url)
        : fileReference(address, m_current ? m_current->currentDirectory() : m_at.home, m_at.home);
    if (file)
        return openFile(*file);
    if (url.isLocalFile())
        return; // deleted since it was resolved
    const bool isOfWeb = address.startsWith("http://"_L1) || address.startsWith("https://"_L1);
    if (!isOfWeb || !m_browser || !m_browser(address))
        m_at.desktop.openLink(url);
}

/// With a line: the user's editor. Else the desktop's default program; executable files are shown in their folder.
void TerminalsView::openFile(const FileReference& file)
{
    const QString editor = qEnvironmentVariable("VISUAL", qEnvironmentVariable("EDITOR")).trimmed();
    const QFileInfo info(file.path);
    if (!editor.isEmpty() && file.line > 0 && info.isFile()) {
        terminal::Command command = editorCommand(editor, file);
        command.umask = m_at.umask;
        createLocalSession(u"edit"_s, std::move(command)).rename(QFileInfo(file.path).fileName());
        return;
    }
    const bool mayRun = info.isFile() && (info.isExecutable() || info.suffix() == "desktop"_L1);
    m_at.desktop.openFile(mayRun ? info.absolutePath() : file.path);
}

bool TerminalsView::asksBeforeQuit()
{
    QStringList programs;
    for (const auto& session : m_sessions) {
        if (const QString program = session->runningCommand(); !program.isEmpty())
            programs.append(program);
    }
    return m_question.askToQuit(programs);
}

void TerminalsView::refresh()
{
    QList<TerminalTab> tabs;
    for (const auto& session : m_sessions) {
        if (session.get() == m_current)
            session->clearAttention();
        const auto& [state, percent] = session->progress();
        tabs.append({ session->id(), session->label(), session.get() == m_current, session->attention(),
            session->exitStatus().has_value(), shareOf(session->progress()),
            state == terminal::ProgressState::Error || state == terminal::ProgressState::Paused });
    }
    m_tabs.assign(tabs);
    Q_EMIT changed();
}

}
