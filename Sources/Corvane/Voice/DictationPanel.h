#pragma once

#include "Foundation/Scheduler.h"

#include <QObject>

namespace corvane {

enum class DictationPanelMode { Listening, Busy, Attention, Done };

/// What the small dictation panel shows, and for how long.
class DictationPanel : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool visible READ isVisible NOTIFY changed)
    Q_PROPERTY(QString text READ text NOTIFY changed)
    Q_PROPERTY(QString mode READ modeWord NOTIFY changed) ///< listening, busy, attention, done
    Q_PROPERTY(QString elapsedText READ elapsedText NOTIFY progressed) ///< such as "0:07", while listening
    Q_PROPERTY(double level READ level NOTIFY progressed) ///< sound level or progress of the transcription, from 0 to 1
public:
    /// The scheduler outlives the panel.
    explicit DictationPanel(Scheduler& scheduler, QObject* parent = nullptr);

    bool isVisible() const { return m_isVisible; }
    const QString& text() const { return m_text; }
    DictationPanelMode mode() const { return m_mode; }
    QString modeWord() const;
    QString elapsedText() const;
    double level() const { return m_level; }

    void show(const QString& text, DictationPanelMode mode);
    void show(const QString& text, DictationPanelMode mode, Milliseconds time); ///< hides automatically
    void setProgress(double level, double elapsedSeconds = 0);
    void hide();

Q_SIGNALS:
    void changed();
    void progressed();

private:
    Scheduler& m_scheduler;
    QString m_text;
    DictationPanelMode m_mode = DictationPanelMode::Done;
    bool m_isVisible = false;
    double m_level = 0;
    double m_elapsed = 0;
    std::unique_ptr<Timer> m_hiding;
};

}
