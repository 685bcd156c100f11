#include "Calls/CallSettings.h"

#include "Calls/CallRecorder.h"
#include "Calls/CallSummarizer.h"
#include "Calls/RecordedCalls.h"
#include "Foundation/UserDefaults.h"
#include "Store/Work/CallWrites.h"

#include <QFile>
#include <algorithm>

namespace corvane {

namespace {

const QString keptKey = QStringLiteral("Corvane.calls.keepSoundDays");
const QString batteryKey = QStringLiteral("Corvane.calls.alsoOnBattery");
constexpr qint64 dayMs = 24LL * 3600 * 1000;

}

CallSettings::CallSettings(CallRecorder& recorder, QObject* parent)
    : QObject(parent)
    , m_recorder(recorder)
{
    connect(&recorder, &CallRecorder::changed, this, &CallSettings::changed);
}

bool CallSettings::systemAudio() const
{
    return m_recorder.systemAudioEnabled();
}

void CallSettings::setSystemAudio(bool on)
{
    m_recorder.setSystemAudioEnabled(on);
}

QString CallSettings::systemAudioStatus() const
{
    return m_recorder.systemAudioStatus();
}

QList<Choice> CallSettings::keeping() const
{
    return { { QStringLiteral("0"), QStringLiteral("Always") }, { QStringLiteral("365"), QStringLiteral("1 year") },
        { QStringLiteral("90"), QStringLiteral("90 days") }, { QStringLiteral("30"), QStringLiteral("30 days") },
        { QStringLiteral("7"), QStringLiteral("7 days") } };
}

QString CallSettings::kept() const
{
    return QString::number(m_recorder.surroundings().defaults.integer(keptKey).value_or(0));
}

void CallSettings::setKept(const QString& days)
{
    const QList<Choice> choices = keeping();
    if (std::ranges::find(choices, days, &Choice::id) == choices.end() || days == kept())
        return;
    m_recorder.surroundings().defaults.setInteger(keptKey, days.toInt());
    Q_EMIT changed();
    deleteOldSound(m_recorder);
}

bool CallSettings::alsoOnBattery() const
{
    return m_recorder.surroundings().defaults.boolean(batteryKey).value_or(false);
}

void CallSettings::setAlsoOnBattery(bool on)
{
    m_recorder.surroundings().defaults.setBoolean(batteryKey, on);
    Q_EMIT changed();
}

bool CallSettings::codexAllowed() const
{
    return m_recorder.processor().summarizer().codexAllowed().value_or(false);
}

void CallSettings::setCodexAllowed(bool allowed)
{
    m_recorder.processor().summarizer().allowCodex(allowed);
    Q_EMIT changed();
}

int deleteOldSound(CallRecorder& recorder)
{
    const qint64 days = recorder.surroundings().defaults.integer(keptKey).value_or(0);
    if (days <= 0)
        return 0;
    LocalDB& db = recorder.recorded().db();
    int deleted = 0;
    for (const CallDetails& call : callsWithSoundBefore(db, recorder.surroundings().scheduler.nowMs() - days * dayMs)) {
        if (recorder.processor().isProcessing(call.id))
            continue;
        for (const QString& path : { call.micPath, call.systemPath })
            deleted += !path.isEmpty() && QFile::remove(path) ? 1 : 0;
    }
    if (deleted > 0)
        recorder.recorded().refresh();
    return deleted;
}

}
