#pragma once

#include "Dev/TerminalWorkspaceView.h"
#include "Work/LumoHub.h"

namespace corvane {

/// The Lumo hub with its console: what the hub's page shows.
class LumoScreen : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::LumoHub* hub READ hub CONSTANT)
    Q_PROPERTY(corvane::TerminalWorkspaceView* console READ console CONSTANT)
public:
    /// Both outlive it.
    LumoScreen(LumoHub& hub, TerminalWorkspaceView& console)
        : m_hub(hub)
        , m_console(console)
    {
    }

    LumoHub* hub() { return &m_hub; }
    TerminalWorkspaceView* console() { return &m_console; }

private:
    LumoHub& m_hub;
    TerminalWorkspaceView& m_console;
};

}
