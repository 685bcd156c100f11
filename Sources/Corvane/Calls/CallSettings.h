#pragma once

#include "Presentation/Choice.h"

namespace corvane {

class CallRecorder;

/// What of recorded calls a person can set: the system's sound, work on battery, how long sound is kept, Codex.
class CallSettings : public QObject {
    Q_OBJECT
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
    /// `recorder` outlives the settings.
    explicit CallSettings(CallRecorder& recorder, QObject* parent = nullptr);

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
};

/// Deletes the sound of calls that is older than the person keeps it. Returns how many files went.
int deleteOldSound(CallRecorder& recorder);

}
