#include "Desk/ResourceSnapshot.h"

#include "Foundation/Literals.h"

#include <QLocale>
#include <QRegularExpression>
#include <algorithm>
#include <array>

namespace corvane {

namespace {

constexpr int keptProcesses = 24;
constexpr double highPressure = 10; // percent of the last ten seconds
constexpr quint64 highPages = 800'000;
const QString otherRole = u"app"_s;

struct Role {
    const char16_t* part;
    const char16_t* name;
};

constexpr std::array roles {
    Role { u"corvane", u"Corvane" },
    Role { u"claude", u"Claude" },
    Role { u"codex", u"Codex" },
    Role { u"whatsapp", u"WhatsApp engine" },
    Role { u"baileys", u"WhatsApp engine" },
    Role { u"node", u"Node" },
    Role { u"chrome", u"Chrome" },
    Role { u"chromium", u"Chromium" },
    Role { u"firefox", u"Firefox" },
};

bool isInterpreter(const QString& program)
{
    static const QRegularExpression name(u"\\A(node|bun|deno|python[0-9.]*|sh|bash|env)\\z"_s);
    return name.match(program).hasMatch();
}

/// The program's path, and for an interpreter the script, too. Other arguments, such as the file open in an editor, do
/// not identify the program.
QString programText(const QString& command, const QString& arguments)
{
    const QStringList words = arguments.split(u' ', Qt::SkipEmptyParts);
    QString text = command + u' ' + words.value(0);
    if (isInterpreter(command)) {
        const auto script = std::ranges::find_if(words.begin() + std::min<qsizetype>(1, words.size()), words.end(),
            [](const QString& word) { return !word.startsWith(u'-'); });
        if (script != words.end())
            text += u' ' + *script;
    }
    return text.toLower();
}

bool isDisplayServer(const QString& command)
{
    static const QStringList servers { u"Xorg"_s, u"X"_s, u"Xwayland"_s, u"Xvfb"_s, u"Xtigervnc"_s, u"gnome-shell"_s,
        u"kwin_wayland"_s, u"kwin_x11"_s, u"mutter"_s, u"sway"_s, u"weston"_s, u"Hyprland"_s, u"labwc"_s, u"wayfire"_s,
        u"niri"_s, u"river"_s, u"cosmic-comp"_s, u"cage"_s };
    return servers.contains(command);
}

/// This program and its children: engines and the tool server, but not what runs in its terminals.
bool isOwn(const RunningProcess& process, qint64 ownPid)
{
    return process.pid == ownPid || (process.parentPid == ownPid && !process.hasOwnTerminal);
}

bool isProtected(const RunningProcess& process, qint64 ownPid)
{
    return process.pid == 1 || !process.isOfThisUser || process.leadsSession || isOwn(process, ownPid)
        || isDisplayServer(process.command);
}

/// A browser's pages are separate processes, distinguishable only by their size.
bool isBrowsersPage(const ResourceProcessRow& row)
{
    return row.arguments.contains(u" --type=") || row.arguments.contains(u" -contentproc");
}

}

QString ResourceProcessRow::memoryLabel() const
{
    return formatBytes(quint64(residentBytes));
}

QString ResourceProcessRow::role() const
{
    const QString text = programText(command, arguments);
    const auto* const found
        = std::ranges::find_if(roles, [&](const Role& role) { return text.contains(QStringView(role.part)); });
    return found == roles.end() ? otherRole : QString::fromUtf16(found->name);
}

ResourceSnapshot snapshotOf(const ResourceReading& reading, qint64 ownPid)
{
    ResourceSnapshot snapshot;
    snapshot.pageSize = reading.pageSize;
    snapshot.compressorPages = reading.compressedPages;
    snapshot.compressorBytes = reading.compressedPages * reading.pageSize;
    snapshot.pressure = reading.pressure;
    QList<ResourceProcessRow> others;
    for (const RunningProcess& process : reading.processes) {
        const ResourceProcessRow row { process.pid, process.startTime, process.residentBytes, process.command,
            process.arguments, isProtected(process, ownPid) };
        const QString text = programText(row.command, row.arguments);
        snapshot.localClaudeCount += text.contains(u"claude") ? 1 : 0;
        snapshot.codexCount += text.contains(u"codex") ? 1 : 0;
        snapshot.nodeCount += row.command == u"node" ? 1 : 0;
        (row.role() == otherRole || isBrowsersPage(row) ? others : snapshot.topProcesses).append(row);
    }
    const auto byMemory = [](QList<ResourceProcessRow>& rows) {
        std::ranges::sort(rows, [](const ResourceProcessRow& one, const ResourceProcessRow& other) {
            return std::pair(one.residentBytes, other.pid) > std::pair(other.residentBytes, one.pid);
        });
    };
    byMemory(others);
    const qsizetype room = std::max<qsizetype>(0, keptProcesses - snapshot.topProcesses.size());
    snapshot.topProcesses += others.first(std::min(room, others.size()));
    byMemory(snapshot.topProcesses);
    return snapshot;
}

bool isShort(const ResourceSnapshot& snapshot)
{
    return snapshot.pressure ? *snapshot.pressure > highPressure : snapshot.compressorPages > highPages;
}

QString formatBytes(quint64 bytes)
{
    return QLocale::c().formattedDataSize(qint64(bytes), bytes < 1'000'000'000 ? 0 : 1, QLocale::DataSizeSIFormat);
}

}
