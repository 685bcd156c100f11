#pragma once

#include "Foundation/Cancellation.h"

#include <QObject>
#include <QTemporaryDir>
#include <qcoro/qcorotask.h>

namespace corvane {

class AudioPlayer;
class ToolRunner;

/// Reads texts aloud, one at a time.
class SpeechReader : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString speakingId READ speakingId NOTIFY changed) ///< the text being read; empty for none
    Q_PROPERTY(QString errorText READ errorText NOTIFY changed) ///< why the latest could not be read
public:
    /// Both outlive the reader; the player is used by nothing else.
    SpeechReader(ToolRunner& tools, AudioPlayer& player, QObject* parent = nullptr);
    ~SpeechReader() override;

    const QString& speakingId() const { return m_speakingId; }
    const QString& errorText() const { return m_errorText; }

    /// Stops the current text. The language is a code such as "de"; empty: the system's.
    void speak(const QString& id, const QString& text, const QString& language = {});
    void stop();

Q_SIGNALS:
    void changed();

private:
    QCoro::Task<> read(QString text, QString language);
    void end(const QString& error);

    ToolRunner& m_tools;
    AudioPlayer& m_player;
    QTemporaryDir m_folder; ///< private to the user
    QString m_speakingId;
    QString m_errorText;
    CancelHandle m_cancel;
    bool m_playing = false;
};

}
