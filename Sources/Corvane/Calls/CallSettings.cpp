#include "Calls/CallSettings.h"

#include "Calls/CallRecorder.h"
#include "Calls/CallSummarizer.h"
#include "Calls/MeetingAutoRecorder.h"
#include "Calls/RecordedCalls.h"
#include "Foundation/Literals.h"
#include "Foundation/UserDefaults.h"
#include "Store/Work/CallWrites.h"

#include <QFile>
#include <algorithm>

namespace corvane {

namespace {

const QString keptKey = u"Corvane.calls.keepSoundDays"_s;
const QString batteryKey = u"Corvane.calls.alsoOnBattery"_s;
constexpr qint64 dayMs = 24LL * 3600 * 1000;

/// "At the start", "1 minute before"; includes a value that another program wrote.
QList<Choice> momentChoices(int chosen, const QString& atOnce, const QString& away)
{
    QList<int> values { 0, 60, 120, 300, 600 };
    if (!values.contains(chosen))
        values.insert(std::ranges::upper_bound(values, chosen) - values.begin(), chosen);
    QList<Choice> choices;
    for (const int seconds : std::as_const(values)) {
        const bool whole = seconds % 60 == 0;
        const int count = whole ? seconds / 60 : seconds;
        const QString unit = whole ? u"minute"_s : u"second"_s;
        choices.append({ QString::number(seconds),
            seconds == 0 ? atOnce : u"%1 %2%3 %4"_s.arg(count).arg(unit, count == 1 ? QString() : u"s"_s, away) });
    }
    return choices;
}

}

CallSettings::CallSettings(CallRecorder& recorder, MeetingAutoRecorder& autoRecorder, QObject* parent)
    : QObject(parent)
    , m_recorder(recorder)
    , m_autoRecorder(autoRecorder)
{
    connect(&recorder, &CallRecorder::changed, this, &CallSettings::changed);
    connect(&autoRecorder, &MeetingAutoRecorder::changed, this, &CallSettings::changed);
}

bool CallSettings::autoRecord() const
{
    return m_autoRecorder.rule().enabled;
}

void CallSettings::setAutoRecord(bool on)
{
    m_autoRecorder.setEnabled(on);
}

QString CallSettings::autoRecordText() const
{
    return m_autoRecorder.statusText();
}

bool CallSettings::requireMeetingApp() const
{
    return m_autoRecorder.rule().requireMeetingApp;
}

void CallSettings::setRequireMeetingApp(bool required)
{
    m_autoRecorder.setRequireMeetingApp(required);
}

QString CallSettings::requireMeetingAppHint() const
{
    QStringList names;
    for (const MeetingAppCandidate& app : m_autoRecorder.runningMeetingApps())
        names.append(app.name);
    const QString hint = u"Such as Zoom, Teams or Signal; a browser counts while it uses the microphone."_s;
    return names.isEmpty() ? hint : hint + u" Now: "_s + names.join(u", "_s) + u'.';
}

QList<Choice> CallSettings::leads() const
{
    return momentChoices(m_autoRecorder.rule().startLeadSeconds, u"At its start"_s, u"before"_s);
}

QString CallSettings::lead() const
{
    return QString::number(m_autoRecorder.rule().startLeadSeconds);
}

void CallSettings::setLead(const QString& seconds)
{
    m_autoRecorder.setStartLeadSeconds(seconds.toInt());
}

QList<Choice> CallSettings::graces() const
{
    return momentChoices(m_autoRecorder.rule().stopGraceSeconds, u"At its end"_s, u"after"_s);
}

QString CallSettings::grace() const
{
    return QString::number(m_autoRecorder.rule().stopGraceSeconds);
}

void CallSettings::setGrace(const QString& seconds)
{
    m_autoRecorder.setStopGraceSeconds(seconds.toInt());
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
    return { { u"0"_s, u"Always"_s }, { u"365"_s, u"1 year"_s }, { u"90"_s, u"90 days"_s }, { u"30"_s, u"30 days"_s },
        { u"7"_s, u"7 days"_s } };
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
