#include "Shell/CommandLine.h"

#include "Foundation/Literals.h"
#include "Foundation/SystemScheduler.h"
#include "Platform/AppPaths.h"
#include "Shell/AskCommand.h"
#include "Shell/BackupCommand.h"
#include "Shell/CalendarCommand.h"
#include "Shell/CaptureCommand.h"
#include "Shell/DoctorCommand.h"
#include "Shell/ExchangeCommand.h"
#include "Shell/InboxCommand.h"
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

struct TextCommand {
    QStringList words;
    QString arguments; ///< as shown in the help
    QString what;
    qsizetype least = 0;
    qsizetype most = 0;
    int (*run)(const TextCall& call) = nullptr; ///< none for commands that notify or start the program
};

constexpr qsizetype any = 1'000'000;
constexpr int wrongUse = 2;

/// Piped input; does not wait for input from a terminal.
QByteArray pipedIn()
{
    QFile input;
    return isatty(STDIN_FILENO) == 0 && input.open(stdin, QIODevice::ReadOnly) ? input.readAll() : QByteArray();
}

int runTool(const TextCall& call)
{
    ToolCall tool;
    tool.name = call.arguments.value(0);
    if (!tool.name.isEmpty())
        tool.arguments = pipedIn();
    SystemScheduler scheduler;
    return static_cast<int>(callTool(call.paths, scheduler, tool, call.out, call.errors));
}

const QList<TextCommand>& commandTable()
{
    static const QList<TextCommand> commands {
        { { u"ask"_s }, u"QUESTION"_s, u"Prints what Lumo answers."_s, 0, any,
            [](const TextCall& call) {
                return askQuestion(call.paths, call.arguments, call.out, call.errors);
            } },
        { { u"backup"_s }, u"[OPTIONS] FILE"_s,
            u"Keeps all data in a file (--encrypt, --secrets, --no-media), or checks one (--verify)."_s, 1, any,
            runBackup },
        { { u"calendar"_s, u"import"_s }, u"FILE"_s, u"Adds the events of a calendar file."_s, 1, 1,
            [](const TextCall& call) {
                return importCalendarFile(call.paths, call.arguments.first(), call.out);
            } },
        { { u"capture"_s }, u"[--note] WORDS"_s, u"Adds a task or a note. Without words, opens the panel."_s, 1, any,
            [](const TextCall& call) {
                return captureWords(call.paths, call.arguments, call.errors);
            } },
        { { u"capture"_s }, {}, {} },
        { { u"doctor"_s }, u"[--fix] [--json]"_s, u"Checks the profile and this computer, and says what to do."_s, 0, 2,
            runDoctor },
        { { u"export"_s }, u"FOLDER"_s, u"Writes people, messages and records to a new folder."_s, 1, 1, runExport },
        { { u"import"_s }, u"PATH"_s, u"Reads such a folder, or an .mbox, .eml, .vcf or .ics file."_s, 1, any,
            runImport },
        { { u"list"_s }, u"[--all] [--json]"_s, u"Lists who waits for you, or everybody."_s, 0, any, listPeople },
        { { u"mark"_s }, {}, u"Marks this moment of the recorded call."_s },
        { { u"record"_s }, {}, u"Starts or stops recording a call."_s },
        { { u"restore"_s }, u"[OPTIONS] FILE"_s, u"Makes a profile of a backup (--into FOLDER, --replace)."_s, 1, any,
            runRestore },
        { { u"search"_s }, u"[--json] WORDS"_s, u"Finds messages, calls, notes, deals, tasks, events and work."_s, 1,
            any, searchInbox },
        { { u"send"_s }, u"PERSON [WORDS]"_s, u"Writes a message that waits in Approvals."_s, 1, any,
            [](const TextCall& call) {
                const QString typed = call.arguments.size() > 1 ? QString() : QString::fromUtf8(pipedIn());
                return draftMessage(call, typed);
            } },
        { { u"show"_s }, u"[--json] PERSON"_s, u"Prints the newest messages with somebody."_s, 1, any, showPerson },
        { { u"status"_s }, u"[--json]"_s, u"Says what is new and what waits."_s, 0, any, printStatus },
        { { u"tool"_s }, u"[NAME]"_s,
            u"Calls a tool of the tool server with the JSON on standard input, or lists them."_s, 0, 1, runTool },
        { { u"verify"_s }, {}, u"Checks the decision log."_s, 0, 0,
            [](const TextCall& call) {
                return verifyDecisions(call.paths, call.out);
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
    const AppPaths paths = AppPaths::fromEnvironment();
    return command->run({ paths, given.mid(command->words.size()), out, errors });
}

QString commandHelp()
{
    constexpr int indent = 33;
    QString lines = u"Commands:\n"_s;
    for (const TextCommand& command : commandTable()) {
        if (!command.what.isEmpty())
            lines += u"  "_s + usage(command).leftJustified(indent) + u"  "_s + command.what + u'\n';
    }
    return lines;
}

}
