#include "Calls/CallSoundView.h"

#include "Foundation/Literals.h"
#include "Presentation/PlayTime.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr int barCount = 240;

}

CallSoundView::CallSoundView(CallPlayer& player, QObject* parent)
    : QObject(parent)
    , m_player(player)
{
}

void CallSoundView::show(const CallSnapshot& call)
{
    m_call = call;
    m_player.open(call.microphonePath, call.systemPath, call.details.durationMs);
    Q_EMIT changed();
}

QString CallSoundView::noSoundText() const
{
    if (!m_call.exists() || hasSound())
        return {};
    return m_call.isRecordedNow ? u"The sound can be played after the recording."_s
                                : u"The sound of this call is no longer here."_s;
}

QList<float> CallSoundView::microphoneBars() const
{
    return m_call.waveform.microphone(barCount);
}

QList<float> CallSoundView::systemBars() const
{
    return m_call.systemPath.isEmpty() ? QList<float>() : m_call.waveform.system(barCount);
}

QList<double> CallSoundView::marks() const
{
    const qint64 duration = m_player.durationMs();
    QList<double> places;
    for (const qint64 mark : m_call.notes.marksMs) {
        if (duration > 0)
            places.append(std::min(1.0, double(mark) / double(duration)));
    }
    return places;
}

QStringList CallSoundView::markTimes() const
{
    QStringList times;
    for (const qint64 mark : m_call.notes.marksMs)
        times.append(playTime(mark));
    return times;
}

void CallSoundView::playMark(int number)
{
    if (number >= 0 && number < m_call.notes.marksMs.size())
        m_player.playFrom(m_call.notes.marksMs.at(number));
}

}
