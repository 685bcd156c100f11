#include "Calls/CallRows.h"

#include "Calls/CallRecorder.h"
#include "Foundation/Text.h"
#include "Presentation/DateWords.h"
#include "Presentation/PlayTime.h"
#include "Store/Approvals/CrmProposals.h"

#include <QRegularExpression>
#include <algorithm>

namespace corvane {

CallState callState(const QString& status, const QString& error, const CallRecorder& recorder, const QString& id)
{
    const CallProcessor& processor = recorder.surroundings().processor;
    if (recorder.records(id))
        return { QStringLiteral("Recording"), QStringLiteral("recording") };
    if (recorder.isSaving(id))
        return { QStringLiteral("Saving"), QStringLiteral("busy") };
    if (processor.isProcessing(id)) {
        const bool summing = processor.phase(id) == CallPhase::Kind::Summarizing;
        return { summing ? QStringLiteral("Summing up") : QStringLiteral("Transcribing"), QStringLiteral("busy") };
    }
    if (status == callStatus::ready)
        return { QStringLiteral("Ready"), QStringLiteral("good") };
    if (status == callStatus::transcribed)
        return { QStringLiteral("Transcribed, no summary"), QStringLiteral("warn") };
    if (status == callStatus::cancelled)
        return { QStringLiteral("Discarded"), {} };
    if (status == callStatus::interrupted)
        return { QStringLiteral("Interrupted"), QStringLiteral("warn") };
    if (status == callStatus::recording)
        return { QStringLiteral("Broken off"), QStringLiteral("warn") };
    if (status == callStatus::failed)
        return { error.startsWith(QLatin1StringView("No speech")) ? QStringLiteral("No speech")
                                                                  : QStringLiteral("No transcript"),
            QStringLiteral("bad") };
    return { QStringLiteral("Not transcribed"), QStringLiteral("warn") };
}

CallRow callRow(const CallRecordingRow& call, const CallState& state, const DateWords& words)
{
    QStringList detail;
    if (call.durationMs > 0)
        detail.append(playTime(call.durationMs));
    detail.append(state.words);
    CallRow row;
    row.id = call.id;
    row.title = call.title;
    row.day = words.group(call.startedAt);
    row.time = words.clockTime(call.startedAt);
    row.detail = detail.join(QStringLiteral(" · "));
    row.tone = state.tone;
    row.aloud = QStringLiteral("%1, %2, %3, %4").arg(call.title, row.day, row.time, detail.join(QStringLiteral(", ")));
    return row;
}

QList<CallTurnRow> turnRows(const QList<CallTurn>& turns, const QString& searched)
{
    const QString wanted = folded(searched.trimmed());
    QList<CallTurnRow> rows;
    for (const CallTurn& turn : turns) {
        CallTurnRow row;
        row.number = int(rows.size());
        row.id = QString::number(rows.size());
        row.time = playTime(turn.startMs);
        row.speaker = turn.speaker;
        row.text = turn.text;
        row.mine = turn.speaker == meSpeaker;
        row.hit = !wanted.isEmpty() && folded(turn.text).contains(wanted);
        rows.append(row);
    }
    return rows;
}

/// The summary is asked for under fixed heads; a model that uses none of them gets one.
QList<CallSummarySection> summarySections(const QString& summary)
{
    static const QRegularExpression head(
        QStringLiteral(R"(^[\s*#-]*(Summary|Decisions|Action items|Follow-up|Warning)[*\s]*:[*]*\s*(.*)$)"),
        QRegularExpression::CaseInsensitiveOption);
    QList<CallSummarySection> sections;
    for (const QString& line : summary.trimmed().split(u'\n')) {
        if (const auto match = head.match(line); match.hasMatch())
            sections.append({ match.captured(1), match.captured(2).trimmed() });
        else if (sections.isEmpty() && !line.trimmed().isEmpty())
            sections.append({ QStringLiteral("Summary"), line.trimmed() });
        else if (!sections.isEmpty())
            sections.last().text += u'\n' + line;
    }
    for (CallSummarySection& section : sections)
        section.text = section.text.trimmed();
    sections.removeIf([](const CallSummarySection& section) { return section.text.isEmpty(); });
    return sections;
}

CallProposalRow proposalRow(const CRMUpdateProposal& proposal)
{
    const QString state = proposal.status == QLatin1StringView("applied") ? QStringLiteral("Applied")
        : proposal.status == QLatin1StringView("rejected")                ? QStringLiteral("Rejected")
                                                                          : QString();
    return { proposal.id, proposal.title, proposal.bodyPreview(), state, proposal.error };
}

}
