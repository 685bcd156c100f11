#include "Calls/CallTranscriptView.h"

#include "Foundation/Literals.h"

#include <algorithm>

namespace corvane {

namespace {

QString textWithoutTurns(const CallSnapshot& call)
{
    if (!call.exists() || !call.turns.isEmpty())
        return {};
    if (call.isRecordedNow)
        return u"The transcript follows after the recording."_s;
    return call.isBusy ? u"The call is being transcribed."_s : u"There is no transcript yet."_s;
}

}

CallTranscriptView::CallTranscriptView(CallPlayer& player, QObject* parent)
    : QObject(parent)
    , m_player(player)
{
    connect(&m_player, &CallPlayer::moved, this, &CallTranscriptView::moved);
}

void CallTranscriptView::show(const CallSnapshot& call, const QString& searched)
{
    m_turns = call.turns;
    m_rows.assign(turnRows(m_turns, searched));
    m_emptyText = textWithoutTurns(call);
    Q_EMIT changed();
    Q_EMIT moved();
}

int CallTranscriptView::currentTurn() const
{
    if (m_player.state() == "idle"_L1)
        return -1;
    const auto later = std::ranges::upper_bound(m_turns, m_player.positionMs(), {}, &CallTurn::startMs);
    return int(later - m_turns.begin()) - 1;
}

int CallTranscriptView::firstHit() const
{
    const auto& rows = m_rows.rows();
    const auto found = std::ranges::find(rows, true, &CallTurnRow::hit);
    return found == rows.end() ? -1 : int(found - rows.begin());
}

void CallTranscriptView::leadToHit()
{
    if (const int hit = firstHit(); hit >= 0)
        m_player.startFrom(m_turns.at(hit).startMs);
}

void CallTranscriptView::playTurn(int number)
{
    if (number >= 0 && number < m_turns.size())
        m_player.playFrom(m_turns.at(number).startMs);
}

}
