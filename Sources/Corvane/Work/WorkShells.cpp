#include "Work/WorkShells.h"

#include "Presentation/BodyText.h"
#include "Terminals/ShellCommand.h"

namespace corvane {

namespace {

/// A command that prints the text and then runs the user's shell: the text is an argument and never typed, so that
/// nothing in it can be executed.
terminal::Command shellThatShows(const QString& text, terminal::Command command)
{
    const std::string program
        = command.program.empty() ? qEnvironmentVariable("SHELL", u"/bin/sh"_s).toStdString() : command.program;
    std::vector<std::string> arguments { "-c", R"(printf %s "$0"; exec "$@")", BodyText::printable(text).toStdString(),
        program };
    if (command.program.empty())
        arguments.emplace_back("-l");
    else
        arguments.insert(arguments.end(), command.arguments.begin(), command.arguments.end());
    command.program = "/bin/sh";
    command.arguments = arguments;
    return command;
}

}

WorkShells::WorkShells(const TerminalsView::Surroundings& at, const QString& module, QObject* parent)
    : WorkShells(nullptr, at, module, parent)
{
}

WorkShells::WorkShells(
    TerminalsView& view, const TerminalsView::Surroundings& at, const QString& module, QObject* parent)
    : WorkShells(&view, at, module, parent)
{
}

WorkShells::WorkShells(
    TerminalsView* view, const TerminalsView::Surroundings& at, const QString& module, QObject* parent)
    : QObject(parent)
    , m_at(at)
    , m_module(module)
    , m_own(view ? nullptr : std::make_unique<TerminalsView>(at))
    , m_view(view ? *view : *m_own)
{
    connect(&m_view, &TerminalsView::changed, this, &WorkShells::changed);
    // Shows the terminal with the question.
    connect(m_view.question(), &TerminalQuestion::changed, this,
        [this] { setOpen(m_open || !m_view.question()->text().isEmpty()); });
}

bool WorkShells::isOpen() const
{
    return m_open && m_view.count() > 0;
}

void WorkShells::setOpen(bool open)
{
    if (std::exchange(m_open, open) != open)
        Q_EMIT changed();
}

void WorkShells::show(const QString& name, const QString& text, const QString& directory)
{
    const LumoTerminalSession& session = m_view.createLocalSession(
        m_module, shellThatShows(text, shellCommand(resolvedDirectory(directory, m_at.home), m_at.umask)));
    m_view.rename(session.id(), name);
    setOpen(true);
    Q_EMIT brought();
}

void WorkShells::pick(const QString& id)
{
    const bool inFront = m_view.current() && m_view.current()->id() == id;
    m_view.select(id);
    setOpen(!inFront || !m_open);
    if (m_open)
        Q_EMIT brought();
}

}
