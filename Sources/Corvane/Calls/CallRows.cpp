#include "Calls/CallRows.h"

#include "Calls/CallRecorder.h"
#include "Foundation/Literals.h"
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
        return { u"Recording"_s, u"recording"_s };
    if (recorder.isSaving(id))
        return { u"Saving"_s, u"busy"_s };
    if (processor.isProcessing(id)) {
        const bool summing = processor.phase(id) == CallPhase::Kind::Summarizing;
        return { summing ? u"Summarizing"_s : u"Transcribing"_s, u"busy"_s };
    }
    if (status == callStatus::ready)
        return { u"Ready"_s, u"good"_s };
    if (status == callStatus::transcribed)
        return { u"Transcribed, no summary"_s, u"warn"_s };
    if (status == callStatus::cancelled)
        return { u"Discarded"_s, {} };
    if (status == callStatus::interrupted)
        return { u"Interrupted"_s, u"warn"_s };
    if (status == callStatus::recording)
        return { u"Interrupted"_s, u"warn"_s };
    if (status == callStatus::failed)
        return { error.startsWith("No speech"_L1) ? u"No speech"_s : u"No transcript"_s, u"bad"_s };
    return { u"Not transcribed"_s, u"warn"_s };
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
    row.detail = detail.join(u" · "_s);
    row.tone = state.tone;
    row.aloud = u"%1, %2, %3, %4"_s.arg(call.title, row.day, row.time, detail.join(u", "_s));
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

/// The prompt asks for fixed headings; an answer without any gets one.
QList<CallSummarySection> summarySections(const QString& summary)
{
    static const QRegularExpression head(
        uR"(^[\s*#-]*(Summary|Decisions|Action items|Follow-up|Warning)[*\s]*:[*]*\s*(.*)$)"_s,
        QRegularExpression::CaseInsensitiveOption);
    QList<CallSummarySection> sections;
    for (const QString& line : summary.trimmed().split(u'\n')) {
        if (const auto match = head.match(line); match.hasMatch())
            sections.append({ match.captured(1), match.captured(2).trimmed() });
        else if (sections.isEmpty() && !line.trimmed().isEmpty())
            sections.append({ u"Summary"_s, line.trimmed() });
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
    const QString state = proposal.status == "applied"_L1 ? u"Applied"_s
        : proposal.status == "rejected"_L1                ? u"Rejected"_s
                                                          : QString();
    return { proposal.id, proposal.title, proposal.bodyPreview(), state, proposal.error };
}

}
