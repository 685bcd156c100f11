#pragma once

#include "Foundation/NotificationCentre.h"

#include <QObject>

namespace corvane {

class DictationAnywhere;
class Notifier;

/// Shows the dictation panel's text as a desktop banner: for desktops where a window would take the focus from the
/// program that gets the text.
class DictationBanner : public QObject {
    Q_OBJECT
public:
    /// All references outlive the banner.
    DictationBanner(DictationAnywhere& dictation, Notifier& notifier, NotificationCentre& centre);

private:
    void follow();

    DictationAnywhere& m_dictation;
    Notifier& m_notifier;
    NotificationCentre::Observation m_pressed;
};

}
