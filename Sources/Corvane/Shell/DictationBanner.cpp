#include "Shell/DictationBanner.h"

#include "Foundation/Literals.h"
#include "Notifications/Notifier.h"
#include "Voice/DictationAnywhere.h"

namespace corvane {

namespace {

const QString finishId = u"finish"_s;
const QString cancelId = u"cancel"_s;

}

DictationBanner::DictationBanner(DictationAnywhere& dictation, Notifier& notifier, NotificationCentre& centre)
    : m_dictation(dictation)
    , m_notifier(notifier)
    , m_pressed(centre.observe(notifications::dictationAction, [this](const Notification& pressed) {
        if (pressed.object == finishId && m_dictation.state().kind == DictationAnywhereState::Kind::Recording)
            m_dictation.toggleRecording();
        else if (pressed.object == cancelId)
            m_dictation.cancel();
    }))
{
    connect(dictation.panel(), &DictationPanel::changed, this, &DictationBanner::follow);
}

void DictationBanner::follow()
{
    const DictationPanel& panel = *m_dictation.panel();
    if (!panel.isVisible())
        return m_notifier.withdrawDictation();
    QList<Banner::Action> buttons;
    if (panel.mode() == DictationPanelMode::Listening)
        buttons.append({ finishId, u"Finish"_s });
    if (panel.mode() == DictationPanelMode::Listening || panel.mode() == DictationPanelMode::Busy)
        buttons.append({ cancelId, u"Cancel"_s });
    m_notifier.notifyDictation(panel.text(), buttons);
}

}
