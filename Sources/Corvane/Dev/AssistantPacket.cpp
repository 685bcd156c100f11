#include "Dev/AssistantPacket.h"

#include "Foundation/Literals.h"
#include "Foundation/Redaction.h"
#include "Store/Work/WorkBoardQueries.h"
#include "Terminals/LumoTerminalSession.h"
#include "Work/WorkWords.h"

namespace corvane {

namespace {

constexpr int packetRows = 50;
constexpr int transcriptCharacters = 5000;

QString block(const QStringList& lines)
{
    return lines.isEmpty() ? u"- none"_s : lines.join(u'\n');
}

QString orElse(const QString& text, const QString& other)
{
    return text.isEmpty() ? other : redactSensitive(text);
}

}

QString assistantContextPacket(const DevDesk& desk, const AssistantPacketParts& parts, const QString& request)
{
    QStringList items;
    for (const WorkItemRecord& item : parts.items)
        items.append(redactSensitive(u"- %1: %2 [%3, %4]"_s.arg(item.kind, item.title, item.status, item.owner)));
    QStringList asks;
    for (const OpsAskRow& ask : parts.asks)
        asks.append(redactSensitive(u"- %1: %2"_s.arg(ask.urgency, ask.question)));
    QStringList memory;
    for (const WorkMemoryRecord& row : parts.memory)
        memory.append(redactSensitive(u"- %1: %2"_s.arg(row.kind, row.body)));
    const QString none = u"none"_s;
    const QString wanted = request.trimmed();
    const QStringList head {
        u"Corvane %1 assistant context."_s.arg(desk.console.area),
        {},
        u"Area: "_s + desk.console.area,
        u"Console: "_s + desk.console.title,
        u"Project: "_s + (desk.hasProject() ? desk.projectName() : u"No project selected"_s),
        u"Slug: "_s + desk.slug(),
        u"Work context: "_s + (desk.context ? desk.context->id : none),
        u"Goal: "_s + redactSensitive(desk.project.goal),
        u"Directory: "_s + orElse(parts.directory, none),
        u"Host: "_s + redactSensitive(hostWords(desk.project.execHost)),
        u"Selected terminal: "_s + orElse(parts.terminal, none),
        u"Browser URL: "_s + desk.browserUrl(),
        u"Never read or move credentials. Never set API keys or enable paid/overflow billing. Never deploy production "
        "or push product main without explicit approval."_s,
    };
    return head.join(u'\n') + u"\n\nOpen work_item rows:\n"_s + block(items) + u"\n\nPending asks:\n"_s + block(asks)
        + u"\n\nShared work_memory:\n"_s + block(memory) + u"\n\nRecent terminal transcript:\n"_s
        + (parts.transcript.isEmpty() ? u"- no selected terminal transcript yet"_s : parts.transcript)
        + u"\n\nUser request:\n"_s
        + (wanted.isEmpty() ? u"Continue with the most useful next action for this console context. Ask before risky "
                              "actions."_s
                            : wanted);
}

QString assistantContextPacket(const DevDesk& desk, const QString& request)
{
    LocalDB& db = desk.work.db;
    const LumoTerminalSession* const session = desk.session();
    AssistantPacketParts parts;
    parts.items
        = fetchWorkItems(db, { .module = devModule, .context = desk.shownContext() }, WorkItems::Open, packetRows);
    if (desk.hasProject())
        parts.asks = fetchOpsAsks(db, desk.project.id, AnsweredAsks::Leave, packetRows);
    for (const WorkMemoryRecord& row : fetchWorkMemory(db, devModule, desk.shownContext(), packetRows)) {
        if (row.status != "rejected"_L1)
            parts.memory.append(row);
    }
    parts.terminal = session ? session->title() : QString();
    parts.transcript = desk.transcript(transcriptCharacters);
    parts.directory = desk.directory();
    return assistantContextPacket(desk, parts, request);
}

}
