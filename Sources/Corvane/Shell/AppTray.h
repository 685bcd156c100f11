#pragma once

#include "Desk/CorvaneMenuBarLabel.h"
#include "Platform/Tray.h"

namespace corvane {

class CorvaneApp;

/// What the icon at the tray shows, and what its menu does.
class AppTray : public QObject {
    Q_OBJECT
public:
    AppTray(CorvaneApp& app, Tray& tray); ///< both outlive it

private:
    void showMenu();
    void showRecording();

    CorvaneApp& m_app;
    Tray& m_tray;
    CorvaneMenuBarLabel m_label;
    int m_minutes = -1; ///< of the recording that the menu shows; -1 without one
};

}
