#pragma once

#include "Foundation/NotificationCentre.h"

#include <QObject>

namespace corvane {

class DictationAnywhere;
class Notifier;

/// What the panel of dictation says, as a banner of the desktop: for desktops where a window would take the focus from
/// the program that gets the text.
class DictationBanner : public QObject {
    Q_OBJECT
public:
    /// All of them outlive the banner.
    DictationBanner(DictationAnywhere& dictation, Notifier& notifier, NotificationCentre& centre);

private:
    void follow();

    DictationAnywhere& m_dictation;
    Notifier& m_notifier;
    NotificationCentre::Observation m_pressed;
};

}
