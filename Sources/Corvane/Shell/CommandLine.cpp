#include "Shell/CommandLine.h"

#include "Foundation/Literals.h"
#include "Foundation/SystemScheduler.h"
#include "Platform/AppPaths.h"
#include "Shell/AskCommand.h"
#include "Shell/CalendarCommand.h"
#include "Shell/CaptureCommand.h"
#include "Shell/ToolCommand.h"
#include "Shell/VerifyCommand.h"

#include <QCoreApplication>
#include <QFile>
#include <QTextStream>
#include <algorithm>
#include <span>
#include <unistd.h>

namespace corvane {

namespace {

struct Run {
    AppPaths paths;
    QStringList arguments; ///< after the words of the command
    QTextStream& out;
    QTextStream& errors;
};

struct TextCommand {
    QStringList words;
    QString arguments; ///< as the help names them
    QString what;
    qsizetype least = 0;
    qsizetype most = 0;
    int (*run)(const Run& run) = nullptr; ///< none if the running program is told, or started
};

constexpr qsizetype any = 1'000'000;
constexpr int wrongUse = 2;

/// The arguments come from what is piped in; a person at a terminal who gives none is not waited for.
int runTool(const Run& run)
{
    ToolCall call;
    call.name = run.arguments.value(0);
    QFile input;
    if (!call.name.isEmpty() && isatty(STDIN_FILENO) == 0 && input.open(stdin, QIODevice::ReadOnly))
        call.arguments = input.readAll();
    if (const int port = qEnvironmentVariableIntValue("NIMB_MCP_PORT"); port > 0)
        call.port = port;
    SystemScheduler scheduler;
    return static_cast<int>(callTool(run.paths, scheduler, call, run.out, run.errors));
}

const QList<TextCommand>& commandTable()
{
    static const QList<TextCommand> commands {
        { { u"ask"_s }, u"QUESTION"_s, u"Prints what Lumo answers."_s, 0, any,
            [](const Run& run) {
                return askQuestion(run.paths, run.arguments, run.out, run.errors);
            } },
        { { u"calendar"_s, u"import"_s }, u"FILE"_s, u"Adds the events of a calendar file."_s, 1, 1,
            [](const Run& run) {
                return importCalendarFile(run.paths, run.arguments.first(), run.out);
            } },
        { { u"capture"_s }, u"[--note] WORDS"_s, u"Keeps a task, or a note. Without words, opens the panel."_s, 1, any,
            [](const Run& run) {
                return captureWords(run.paths, run.arguments, run.errors);
            } },
        { { u"capture"_s }, {}, {} },
        { { u"mark"_s }, {}, u"Marks this moment of the call that is recorded."_s },
        { { u"record"_s }, {}, u"Starts or stops recording a call."_s },
        { { u"tool"_s }, u"[NAME]"_s,
            u"Calls a tool of the tool server with the JSON on standard input, or lists them."_s, 0, 1, runTool },
        { { u"verify"_s }, {}, u"Checks the record of decisions."_s, 0, 0,
            [](const Run& run) {
                return verifyDecisions(run.paths, run.out);
            } },
    };
    return commands;
}

QString usage(const TextCommand& command)
{
    return u"corvane %1 %2"_s.arg(command.words.join(u' '), command.arguments).trimmed();
}

bool takes(const TextCommand& command, const QStringList& given)
{
    const qsizetype count = given.size() - command.words.size();
    return given.first(std::min(given.size(), command.words.size())) == command.words && count >= command.least
        && count <= command.most;
}

}

std::optional<int> runCommand(int argc, char** argv)
{
    QStringList given;
    for (const char* argument : std::span(argv, size_t(argc)).subspan(1))
        given.append(QString::fromLocal8Bit(argument));
    const auto ofName = [&](const TextCommand& command) {
        return command.words.first() == given.value(0);
    };
    const auto& table = commandTable();
    const auto named = std::ranges::find_if(table, ofName);
    if (named == table.end())
        return std::nullopt;
    const auto command = std::ranges::find_if(table, [&](const auto& each) { return takes(each, given); });
    QTextStream out(stdout);
    QTextStream errors(stderr);
    if (command == table.end()) {
        errors << "Usage: " << usage(*named) << '\n';
        return wrongUse;
    }
    if (!command->run)
        return std::nullopt;
    const QCoreApplication application(argc, argv);
    return command->run({ AppPaths::fromEnvironment(), given.mid(command->words.size()), out, errors });
}

QString commandHelp()
{
    constexpr int indent = 30;
    QString lines = u"Commands:\n"_s;
    for (const TextCommand& command : commandTable()) {
        if (!command.what.isEmpty())
            lines += u"  "_s + usage(command).leftJustified(indent) + u"  "_s + command.what + u'\n';
    }
    return lines;
}

}
