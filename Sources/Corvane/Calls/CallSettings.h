#pragma once

#include "Foundation/Literals.h"
#include "Presentation/Choice.h"

namespace corvane {

class CallRecorder;
class MeetingAutoRecorder;

/// The settings of call recording: which meetings are recorded automatically, the system's sound, work on battery, how
/// long sound is kept, Codex.
class CallSettings : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool autoRecord READ autoRecord WRITE setAutoRecord NOTIFY changed)
    Q_PROPERTY(QString autoRecordLabel READ autoRecordLabel CONSTANT)
    Q_PROPERTY(QString autoRecordHint READ autoRecordHint CONSTANT)
    Q_PROPERTY(QString autoRecordText READ autoRecordText NOTIFY changed) ///< the current state
    Q_PROPERTY(bool requireMeetingApp READ requireMeetingApp WRITE setRequireMeetingApp NOTIFY changed)
    Q_PROPERTY(QString requireMeetingAppLabel READ requireMeetingAppLabel CONSTANT)
    Q_PROPERTY(QString requireMeetingAppHint READ requireMeetingAppHint NOTIFY changed)
    Q_PROPERTY(QList<corvane::Choice> leads READ leads NOTIFY changed) ///< seconds, as the next
    Q_PROPERTY(QString lead READ lead WRITE setLead NOTIFY changed)
    Q_PROPERTY(QString leadLabel READ leadLabel CONSTANT)
    Q_PROPERTY(QList<corvane::Choice> graces READ graces NOTIFY changed)
    Q_PROPERTY(QString grace READ grace WRITE setGrace NOTIFY changed)
    Q_PROPERTY(QString graceLabel READ graceLabel CONSTANT)
    Q_PROPERTY(bool systemAudio READ systemAudio WRITE setSystemAudio NOTIFY changed)
    Q_PROPERTY(QString systemAudioLabel READ systemAudioLabel CONSTANT)
    Q_PROPERTY(QString systemAudioStatus READ systemAudioStatus NOTIFY changed)
    Q_PROPERTY(QList<corvane::Choice> keeping READ keeping CONSTANT) ///< how long sound is kept
    Q_PROPERTY(QString kept READ kept WRITE setKept NOTIFY changed)
    Q_PROPERTY(QString keepingLabel READ keepingLabel CONSTANT)
    Q_PROPERTY(QString keepingHint READ keepingHint CONSTANT)
    Q_PROPERTY(bool alsoOnBattery READ alsoOnBattery WRITE setAlsoOnBattery NOTIFY changed)
    Q_PROPERTY(QString alsoOnBatteryLabel READ alsoOnBatteryLabel CONSTANT)
    Q_PROPERTY(QString alsoOnBatteryHint READ alsoOnBatteryHint CONSTANT)
    Q_PROPERTY(bool codexAllowed READ codexAllowed WRITE setCodexAllowed NOTIFY changed)
    Q_PROPERTY(QString codexLabel READ codexLabel CONSTANT)
    Q_PROPERTY(QString codexHint READ codexHint CONSTANT)
public:
    /// Both outlive the settings.
    CallSettings(CallRecorder& recorder, MeetingAutoRecorder& autoRecorder, QObject* parent = nullptr);

    bool autoRecord() const;
    void setAutoRecord(bool on);
    QString autoRecordLabel() const { return u"Calendar auto-record"_s; }
    QString autoRecordHint() const
    {
        return u"A recording starts and stops by itself. Tell everybody in the meeting, and stop it where "
               "somebody does not agree."_s;
    }
    QString autoRecordText() const;
    bool requireMeetingApp() const;
    void setRequireMeetingApp(bool required);
    QString requireMeetingAppLabel() const { return u"Require meeting app"_s; }
    QString requireMeetingAppHint() const;
    QList<Choice> leads() const;
    QString lead() const;
    void setLead(const QString& seconds);
    QString leadLabel() const { return u"Start"_s; }
    QList<Choice> graces() const;
    QString grace() const;
    void setGrace(const QString& seconds);
    QString graceLabel() const { return u"Stop"_s; }
    bool systemAudio() const;
    void setSystemAudio(bool on);
    QString systemAudioLabel() const { return u"Capture system audio"_s; }
    QString systemAudioStatus() const;
    QList<Choice> keeping() const;
    QString kept() const; ///< days; "0" means forever
    void setKept(const QString& days);
    QString keepingLabel() const { return u"Keep the sound of calls"_s; }
    QString keepingHint() const
    {
        return u"Transcript, summary and notes stay. Calls without a transcript keep their sound."_s;
    }
    bool alsoOnBattery() const; ///< transcribe on battery, too
    void setAlsoOnBattery(bool on);
    QString alsoOnBatteryLabel() const { return u"Transcribe also on battery"_s; }
    QString alsoOnBatteryHint() const { return u"Otherwise calls wait for “Transcribe now” on their page."_s; }
    bool codexAllowed() const;
    void setCodexAllowed(bool allowed);
    QString codexLabel() const { return u"Codex may write summaries"_s; }
    QString codexHint() const
    {
        return u"Used if no model runs on this computer. It sends the transcript to its provider."_s;
    }

Q_SIGNALS:
    void changed();

private:
    CallRecorder& m_recorder;
    MeetingAutoRecorder& m_autoRecorder;
};

/// Deletes the sound of calls that is older than the user wants to keep it. Returns the number of files.
int deleteOldSound(CallRecorder& recorder);

}
