#include "Voice/DictationPanel.h"

#include "Foundation/Literals.h"

namespace corvane {

DictationPanel::DictationPanel(Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_scheduler(scheduler)
{
}

QString DictationPanel::modeWord() const
{
    switch (m_mode) {
    case DictationPanelMode::Listening:
        return u"listening"_s;
    case DictationPanelMode::Busy:
        return u"busy"_s;
    case DictationPanelMode::Attention:
        return u"attention"_s;
    case DictationPanelMode::Done:
        break;
    }
    return u"done"_s;
}

QString DictationPanel::elapsedText() const
{
    const int seconds = int(m_elapsed);
    return u"%1:%2"_s.arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

void DictationPanel::show(const QString& text, DictationPanelMode mode)
{
    m_hiding.reset();
    m_text = text;
    m_mode = mode;
    m_isVisible = true;
    setProgress(0);
    Q_EMIT changed();
}

void DictationPanel::show(const QString& text, DictationPanelMode mode, Milliseconds time)
{
    show(text, mode);
    m_hiding = m_scheduler.after(time, [this] { hide(); });
}

void DictationPanel::setProgress(double level, double elapsedSeconds)
{
    m_level = level;
    m_elapsed = elapsedSeconds;
    Q_EMIT progressed();
}

void DictationPanel::hide()
{
    m_hiding.reset();
    if (!std::exchange(m_isVisible, false))
        return;
    Q_EMIT changed();
}

}
