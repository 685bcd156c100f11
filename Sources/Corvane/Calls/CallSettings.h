#pragma once

#include "Presentation/Choice.h"

namespace corvane {

class CallRecorder;
class MeetingAutoRecorder;

/// What of recorded calls a person can set: which meetings are recorded by themselves, the system's sound, work on
/// battery, how long sound is kept, Codex.
class CallSettings : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool autoRecord READ autoRecord WRITE setAutoRecord NOTIFY changed)
    Q_PROPERTY(QString autoRecordLabel READ autoRecordLabel CONSTANT)
    Q_PROPERTY(QString autoRecordHint READ autoRecordHint CONSTANT)
    Q_PROPERTY(QString autoRecordText READ autoRecordText NOTIFY changed) ///< where it stands
    Q_PROPERTY(bool requireMeetingApp READ requireMeetingApp WRITE setRequireMeetingApp NOTIFY changed)
    Q_PROPERTY(QString requireMeetingAppLabel READ requireMeetingAppLabel CONSTANT)
    Q_PROPERTY(QString requireMeetingAppHint READ requireMeetingAppHint NOTIFY changed)
    Q_PROPERTY(QList<corvane::Choice> leads READ leads NOTIFY changed) ///< in seconds, as the next
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
    QString autoRecordLabel() const { return QStringLiteral("Calendar auto-record"); }
    QString autoRecordHint() const
    {
        return QStringLiteral(
            "A recording starts and stops by itself. Tell everybody in the meeting, and stop it where "
            "somebody does not agree.");
    }
    QString autoRecordText() const;
    bool requireMeetingApp() const;
    void setRequireMeetingApp(bool required);
    QString requireMeetingAppLabel() const { return QStringLiteral("Require meeting app"); }
    QString requireMeetingAppHint() const;
    QList<Choice> leads() const;
    QString lead() const;
    void setLead(const QString& seconds);
    QString leadLabel() const { return QStringLiteral("Start"); }
    QList<Choice> graces() const;
    QString grace() const;
    void setGrace(const QString& seconds);
    QString graceLabel() const { return QStringLiteral("Stop"); }
    bool systemAudio() const;
    void setSystemAudio(bool on);
    QString systemAudioLabel() const { return QStringLiteral("Record the other side, too"); }
    QString systemAudioStatus() const;
    QList<Choice> keeping() const;
    QString kept() const; ///< in days; "0" for ever
    void setKept(const QString& days);
    QString keepingLabel() const { return QStringLiteral("Keep the sound of calls"); }
    QString keepingHint() const
    {
        return QStringLiteral("Transcript, summary and notes stay. Calls without a transcript keep their sound.");
    }
    bool alsoOnBattery() const; ///< transcripts are made then, too
    void setAlsoOnBattery(bool on);
    QString alsoOnBatteryLabel() const { return QStringLiteral("Transcribe also on battery"); }
    QString alsoOnBatteryHint() const
    {
        return QStringLiteral("Otherwise calls wait, and “Transcribe now” is on their page.");
    }
    bool codexAllowed() const;
    void setCodexAllowed(bool allowed);
    QString codexLabel() const { return QStringLiteral("Codex may write summaries"); }
    QString codexHint() const
    {
        return QStringLiteral("Where no model runs on this computer. It sends the transcript to its provider.");
    }

Q_SIGNALS:
    void changed();

private:
    CallRecorder& m_recorder;
    MeetingAutoRecorder& m_autoRecorder;
};

/// Deletes the sound of calls that is older than the person keeps it. Returns how many files went.
int deleteOldSound(CallRecorder& recorder);

}
