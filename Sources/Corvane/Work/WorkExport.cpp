#include "Work/WorkExport.h"

#include "Foundation/Literals.h"
#include "Presentation/BodyText.h"
#include "Work/WorkRows.h"

namespace corvane {

namespace {

constexpr int allRows = 100'000;
constexpr int rowsShown = 50;

/// Someone else's text as a list entry: indents the lines after the first.
QString indented(const QString& text)
{
    return BodyText::printable(text.trimmed()).replace(u'\n', u"\n  "_s);
}

QString line(const QStringList& facts, const QString& text)
{
    QString shown = u"- "_s + factLine(facts);
    if (!text.trimmed().isEmpty())
        shown += u"\n\n  "_s + indented(text) + u'\n';
    return shown;
}

}

QString contextAsMarkdown(LocalDB& db, const WorkContextRow& context)
{
    QStringList parts { u"# "_s + shownLine(context.title), QString() };
    if (!context.subtitle.isEmpty())
        parts += { indented(context.subtitle), QString() };
    parts += { u"%1 · %2 · %3"_s.arg(shownLine(context.module), shownLine(context.kind), shownLine(context.updatedAt)),
        QString() };
    const auto section = [&parts](const QString& head, const QStringList& lines) {
        parts += { u"## "_s + head, QString() };
        parts += lines.isEmpty() ? QStringList { u"None."_s } : lines;
        parts += QString();
    };
    QStringList lines;
    for (const WorkItemRecord& item : fetchWorkItems(db, context.module, context.id, allRows))
        lines.append(line({ u"**%1**"_s.arg(shownLine(item.title)), shownLine(item.status), shownLine(item.kind),
                              shownLine(item.priority), shownLine(item.owner) },
            item.summary));
    section(u"Items"_s, lines);
    lines.clear();
    for (const WorkDecisionRecord& decision : fetchWorkDecisions(db, context.module, context.id, allRows))
        lines.append(line({ u"**%1**"_s.arg(shownLine(decision.title)), shownLine(decision.status),
                              shownLine(decision.risk), shownLine(decision.decidedBy), shownLine(decision.updatedAt) },
            decision.proposal + (decision.rationale.isEmpty() ? QString() : u"\n\n"_s + decision.rationale)));
    section(u"Decisions"_s, lines);
    lines.clear();
    for (const WorkEvidenceRecord& evidence : fetchWorkEvidence(db, context.module, context.id, allRows))
        lines.append(line({ u"**%1**"_s.arg(shownLine(evidence.title)), shownLine(evidence.kind),
                              shownLine(evidence.source), shownLine(evidence.uri), shownLine(evidence.createdAt) },
            evidence.summary));
    section(u"Evidence"_s, lines);
    lines.clear();
    for (const WorkMessageRecord& message : fetchWorkMessages(db, context.module, context.id, allRows))
        lines.append(line({ u"**%1**"_s.arg(shownLine(message.speaker)), shownLine(message.createdAt) }, message.body));
    section(u"Messages"_s, lines);
    return parts.join(u'\n');
}

QStringList terminalLines(LocalDB& db, const QString& module, const WorkContext& context)
{
    if (!context)
        return {};
    const QString between = u" · "_s;
    const auto joined = [&](const QStringList& parts) {
        QStringList shown;
        for (const QString& part : parts)
            shown.append(part.isEmpty() ? u"-"_s : shownLine(part));
        return shown.join(between);
    };
    QStringList lines { u"%1:%2 work_context selected"_s.arg(module, shownLine(context->title)),
        u"work_session list --module %1 --context current"_s.arg(module) };
    for (const WorkSessionRecord& session : fetchWorkSessions(db, module, context->id, rowsShown))
        lines.append(u"session "_s + joined({ session.purpose, session.tool, session.status }));
    for (const WorkItemRecord& item : fetchWorkItems(db, module, context->id, rowsShown))
        lines.append(u"work_item  "_s + joined({ item.title, item.status, item.owner }));
    const QList<WorkDecisionRecord> decisions = fetchWorkDecisions(db, module, context->id, rowsShown);
    for (const WorkDecisionRecord& decision : decisions)
        lines.append(u"decision  "_s + joined({ decision.title, decision.status, decision.risk }));
    const QList<WorkEvidenceRecord> evidence = fetchWorkEvidence(db, module, context->id, rowsShown);
    for (const WorkEvidenceRecord& each : evidence)
        lines.append(u"evidence  "_s + joined({ each.title, each.kind, each.source }));
    if (evidence.isEmpty())
        lines.append(u"evidence  none attached yet"_s);
    if (decisions.isEmpty())
        lines.append(u"approval  risky external actions stay gated"_s);
    lines.append(u"$ work_agent_heartbeat --context current --status running"_s);
    return lines;
}

}
