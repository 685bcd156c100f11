#include "Calls/CallsView.h"

#include "Calls/CallRecorder.h"
#include "Calls/RecordedCalls.h"
#include "Foundation/Literals.h"
#include "Presentation/DateWords.h"
#include "Store/Core/Workspaces.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr int callsListed = 500;
constexpr Milliseconds pause { 100 };

}

CallsView::CallsView(RecordingView& recording, CallPlayer& player, QObject* parent)
    : QObject(parent)
    , m_recorder(recording.recorder())
    , m_page(m_recorder, player)
    , m_recording(recording)
    , m_search(m_recorder.recorded().db())
    , m_reload(m_recorder.surroundings().scheduler, pause, [this] { refresh(); })
{
    const auto request = [this] {
        m_reload.request();
    };
    connect(&m_recorder.recorded(), &RecordedCalls::changed, this, request);
    connect(&m_recorder, &CallRecorder::changed, this, request);
    connect(&m_page, &CallPage::removed, this, &CallsView::refresh);
    connect(&m_recording, &RecordingView::started, this, [this] {
        refresh();
        select(m_recording.callId());
    });
}

void CallsView::setQuery(const QString& query)
{
    if (query == m_query)
        return;
    m_query = query;
    refresh();
    if (!m_page.callId().isEmpty())
        m_page.open(m_page.callId(), m_query);
}

void CallsView::refresh()
{
    LocalDB& db = m_recorder.recorded().db();
    const QString text = m_query.trimmed();
    m_search.stop();
    if (text.isEmpty())
        return list(recentCallRecordings(db, callsListed));
    m_search.start<QList<CallRecordingRow>>(
        [workspace = activeWorkspaceId(db), text](SqlConnection& connection, const LatestRead::Stopped&) {
            return findCallRecordings(connection, workspace, text, callsListed);
        },
        [this](const QList<CallRecordingRow>& calls) { list(calls); });
    Q_EMIT changed();
}

void CallsView::list(const QList<CallRecordingRow>& calls)
{
    const DateWords words(m_recorder.surroundings().scheduler.nowMs());
    QList<CallRow> rows;
    for (const CallRecordingRow& call : calls)
        rows.append(callRow(call, callState(call.processingStatus, call.processingError, m_recorder, call.id), words));
    m_rows.assign(rows);
    if (m_page.callId().isEmpty() && !rows.isEmpty())
        m_page.open(rows.first().id, m_query);
    Q_EMIT changed();
}

void CallsView::select(const QString& id)
{
    m_page.open(id, m_query);
    Q_EMIT changed();
}

void CallsView::step(int by)
{
    const QList<CallRow>& rows = m_rows.rows();
    if (rows.isEmpty())
        return;
    const auto found = std::ranges::find(rows, selected(), &CallRow::id);
    const auto at = found == rows.end() ? 0 : found - rows.begin() + by;
    select(rows.at(std::clamp<qsizetype>(at, 0, rows.size() - 1)).id);
}

int CallsView::proposals() const
{
    return int(m_recorder.recorded().pendingProposals().size());
}

QString CallsView::proposalsText() const
{
    if (proposals() == 0)
        return u"No pending call CRM proposals."_s;
    return proposals() == 1 ? u"1 pending proposal ready for review."_s
                            : u"%1 pending proposals ready for review."_s.arg(proposals());
}

QString CallsView::emptyTitle() const
{
    return m_query.isEmpty() ? u"No call recordings yet."_s : u"No calls match “%1”"_s.arg(m_query);
}

QString CallsView::emptyText() const
{
    return m_query.isEmpty()
        ? u"Record a call, and its transcript, summary and next steps appear here. Everything stays on this computer."_s
        : u"Titles, people, transcripts and summaries are searched."_s;
}

QList<Command> callCommands(CallsView& calls)
{
    RecordingView* const recording = calls.recording();
    const auto toggle = [&calls, recording] {
        calls.show();
        recording->toggle();
    };
    return at({ u"Everywhere"_s, 0 },
        {
            inPalette(shortcut(u"recordCall"_s, u"Start or stop recording a call"_s, u"Ctrl+Shift+R"_s, toggle)),
            inPalette(shortcut(u"markCall"_s, u"Mark this moment of the call"_s, u"Ctrl+Shift+M"_s,
                          [recording] { recording->mark(); }),
                [recording] { return recording->recording(); }),
        });
}

}
